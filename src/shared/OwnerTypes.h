#pragma once

#include <windows.h>

#include <cstdio>
#include <memory>
#include <type_traits>

namespace Orvik::Shared
{
struct HandleCloser
{
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

struct RegKeyCloser
{
    using pointer = HKEY;
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};

struct EventSourceCloser
{
    using pointer = HANDLE;
    void operator()(HANDLE source) const noexcept { DeregisterEventSource(source); }
};

struct EventLogCloser
{
    using pointer = HANDLE;
    void operator()(HANDLE log) const noexcept { CloseEventLog(log); }
};

struct FindCloser
{
    using pointer = HANDLE;
    void operator()(HANDLE search) const noexcept { FindClose(search); }
};

struct FileCloser
{
    void operator()(std::FILE* file) const noexcept { (void)std::fclose(file); }
};

// Handles whose invalid value is null: events, mutexes, threads.
using UniqueHandle = std::unique_ptr<HANDLE, HandleCloser>;
using UniqueRegKey = std::unique_ptr<HKEY, RegKeyCloser>;
using UniqueEventSource = std::unique_ptr<HANDLE, EventSourceCloser>;
using UniqueEventLog = std::unique_ptr<HANDLE, EventLogCloser>;
// A search that found nothing is INVALID_HANDLE_VALUE; giving that back does nothing.
using UniqueFindHandle = std::unique_ptr<HANDLE, FindCloser>;
using UniqueFile = std::unique_ptr<std::FILE, FileCloser>;

// Lends a call the place where it writes a new resource; the owner takes it when the full expression ends:
//     RegOpenKeyExW(root, name, 0, access, ReceiveInto(key));
template <class Owner>
class ReceiveInto
{
public:
    explicit ReceiveInto(Owner& owner) : m_owner(owner) {}
    ReceiveInto(const ReceiveInto&) = delete;
    ReceiveInto& operator=(const ReceiveInto&) = delete;
    ~ReceiveInto() { m_owner.reset(m_received); }

    operator typename Owner::pointer *() noexcept { return &m_received; }

private:
    Owner& m_owner;
    typename Owner::pointer m_received{};
};

class CriticalSection
{
public:
    CriticalSection() noexcept { InitializeCriticalSection(&m_section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() { DeleteCriticalSection(&m_section); }

    operator CRITICAL_SECTION&() noexcept { return m_section; }

private:
    CRITICAL_SECTION m_section;
};

// A lock on a critical section for the length of a scope.
class CriticalSectionLock
{
public:
    explicit CriticalSectionLock(CRITICAL_SECTION& section) noexcept : m_section(section)
    {
        EnterCriticalSection(&m_section);
    }
    CriticalSectionLock(const CriticalSectionLock&) = delete;
    CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;
    ~CriticalSectionLock() { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION& m_section;
};
} // namespace Orvik::Shared

#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>

namespace Notifications::OrvikWmiEvents
{
// Memory for records of the event log, none at first. It grows in place where the C runtime can.
class RecordBuffer
{
public:
    // Size in bytes, more than now. False when there is no memory: the buffer is as it was.
    [[nodiscard]] bool Grow(DWORD size) noexcept
    {
        void* const grown = std::realloc(m_pData.get(), size);
        if (grown == nullptr)
            return false;
        static_cast<void>(m_pData.release());
        m_pData.reset(static_cast<std::byte*>(grown));
        m_dwSize = size;
        return true;
    }
    void Free() noexcept
    {
        m_pData.reset();
        m_dwSize = 0;
    }

    [[nodiscard]] std::byte* Data() noexcept { return m_pData.get(); }
    [[nodiscard]] DWORD Size() const noexcept { return m_dwSize; }
    // The bytes that a call has filled; a number beyond the size counts as the size.
    [[nodiscard]] std::span<const std::byte> First(DWORD count) const noexcept
    {
        return {m_pData.get(), count < m_dwSize ? count : m_dwSize};
    }

private:
    struct Freer
    {
        void operator()(std::byte* data) const noexcept { std::free(data); }
    };

    std::unique_ptr<std::byte, Freer> m_pData;
    DWORD m_dwSize = 0;
};
} // namespace Notifications::OrvikWmiEvents

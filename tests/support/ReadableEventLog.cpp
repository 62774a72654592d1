#include "tests/support/ReadableEventLog.h"

#include "tests/support/AllocationFault.h"

#include <algorithm>
#include <cstring>

namespace TestSupport
{
namespace
{
constexpr DWORD g_dwSignature = 0x654C664C;  // of every record
constexpr DWORD g_dwLargestBuffer = 0x7FFFF; // the system takes none that is larger

ReadableEventLog* g_pLog = nullptr;

void Append(RecordBytes& record, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const std::byte*>(data);
    record.insert(record.end(), bytes, bytes + size);
}

void Append(RecordBytes& record, const std::wstring& text)
{
    Append(record, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

WINBOOL Fail(DWORD error)
{
    SetLastError(error);
    return FALSE;
}
} // namespace

RecordBytes BytesOf(const StoredRecord& record)
{
    EVENTLOGRECORD header{};
    RecordBytes bytes(sizeof(header));
    Append(bytes, record.m_strSource);
    Append(bytes, L"COMPUTER");
    header.StringOffset = static_cast<DWORD>(bytes.size());
    for (const std::wstring& text : record.m_lstStrings)
        Append(bytes, text);
    header.UserSidOffset = header.StringOffset;
    header.DataOffset = static_cast<DWORD>(bytes.size());
    bytes.resize((bytes.size() + 3) / 4 * 4 + sizeof(DWORD));
    header.Length = static_cast<DWORD>(bytes.size());
    header.Reserved = g_dwSignature;
    header.EventID = record.m_dwEventId;
    header.EventType = record.m_wType;
    header.NumStrings = static_cast<WORD>(record.m_lstStrings.size());
    std::memcpy(bytes.data(), &header, sizeof(header));
    std::memcpy(&bytes[bytes.size() - sizeof(DWORD)], &header.Length, sizeof(DWORD));
    return bytes;
}

void SetField(RecordBytes& record, DWORD EVENTLOGRECORD::* field, DWORD value)
{
    EVENTLOGRECORD header;
    std::memcpy(&header, record.data(), sizeof(header));
    header.*field = value;
    std::memcpy(record.data(), &header, sizeof(header));
}

void SetStringCount(RecordBytes& record, WORD count)
{
    std::memcpy(&record[offsetof(EVENTLOGRECORD, NumStrings)], &count, sizeof(count));
}

ReadableEventLog::ReadableEventLog()
    : m_open("OpenEventLogW", &Open), m_read("ReadEventLogW", &Read), m_close("CloseEventLog", &Close)
{
    g_pLog = this;
}

ReadableEventLog::~ReadableEventLog()
{
    g_pLog = nullptr;
}

void ReadableEventLog::Add(RecordBytes record)
{
    const std::lock_guard lock(m_lock);
    m_lstRecords.push_back(std::move(record));
}

void ReadableEventLog::AnswerNext(LogAnswer answer)
{
    const std::lock_guard lock(m_lock);
    m_lstAnswers.push_back(std::move(answer));
}

void ReadableEventLog::RefuseOpening(DWORD error)
{
    const std::lock_guard lock(m_lock);
    m_dwOpenError = error;
}

std::vector<LogRead> ReadableEventLog::Reads() const
{
    const std::lock_guard lock(m_lock);
    return m_lstReads;
}

std::vector<std::wstring> ReadableEventLog::OpenedNames() const
{
    const std::lock_guard lock(m_lock);
    return m_lstNames;
}

std::size_t ReadableEventLog::OpenCount() const
{
    const std::lock_guard lock(m_lock);
    return m_mapOpen.size();
}

HANDLE WINAPI ReadableEventLog::Open(LPCWSTR server, LPCWSTR source)
{
    const AllocationFault::Pause pause;
    const std::lock_guard lock(g_pLog->m_lock);
    g_pLog->m_lstNames.push_back((server != nullptr ? std::wstring(server) + L"\\" : L"") + source);
    if (g_pLog->m_dwOpenError != ERROR_SUCCESS)
    {
        SetLastError(g_pLog->m_dwOpenError);
        return nullptr;
    }
    const auto handle = reinterpret_cast<HANDLE>(0xEB000000 + ++g_pLog->m_nLastHandle);
    g_pLog->m_mapOpen[handle] = 0;
    return handle;
}

WINBOOL WINAPI ReadableEventLog::Close(HANDLE log)
{
    const std::lock_guard lock(g_pLog->m_lock);
    return g_pLog->m_mapOpen.erase(log) != 0 ? TRUE : Fail(ERROR_INVALID_HANDLE);
}

WINBOOL WINAPI ReadableEventLog::Read(HANDLE log, DWORD flags, DWORD offset, LPVOID buffer, DWORD size,
                                      DWORD* bytesRead, DWORD* bytesNeeded)
{
    const AllocationFault::Pause pause;
    if (g_pLog->m_onRead)
        g_pLog->m_onRead();
    const std::lock_guard lock(g_pLog->m_lock);
    const LogRead read{flags, offset, buffer, size, GetCurrentThreadId()};
    g_pLog->m_lstReads.push_back(read);
    if (g_pLog->m_lstAnswers.empty())
    {
        const DWORD error = g_pLog->ReadRecords(log, read, static_cast<std::byte*>(buffer), *bytesRead, *bytesNeeded);
        return error == ERROR_SUCCESS ? TRUE : Fail(error);
    }
    const LogAnswer answer = std::move(g_pLog->m_lstAnswers.front());
    g_pLog->m_lstAnswers.pop_front();
    std::copy_n(answer.m_lstBytes.begin(), std::min<std::size_t>(answer.m_lstBytes.size(), size),
                static_cast<std::byte*>(buffer));
    *bytesRead = answer.m_dwBytesRead;
    *bytesNeeded = answer.m_dwBytesNeeded;
    return answer.m_dwError == ERROR_SUCCESS ? TRUE : Fail(answer.m_dwError);
}

DWORD ReadableEventLog::ReadRecords(HANDLE log, const LogRead& read, std::byte* buffer, DWORD& bytesRead,
                                    DWORD& bytesNeeded)
{
    bytesRead = 0;
    bytesNeeded = 0;
    const auto found = m_mapOpen.find(log);
    if (found == m_mapOpen.end())
        return ERROR_INVALID_HANDLE;
    const bool isBackwards = read.m_dwFlags == (EVENTLOG_SEQUENTIAL_READ | EVENTLOG_BACKWARDS_READ);
    const bool isForwards = read.m_dwFlags == (EVENTLOG_SEQUENTIAL_READ | EVENTLOG_FORWARDS_READ);
    if ((!isBackwards && !isForwards) || read.m_dwSize > g_dwLargestBuffer)
        return ERROR_INVALID_PARAMETER;
    std::size_t& done = found->second;
    if (done >= m_lstRecords.size())
        return ERROR_HANDLE_EOF;
    for (; done < m_lstRecords.size(); ++done)
    {
        const RecordBytes& record = m_lstRecords[isBackwards ? m_lstRecords.size() - 1 - done : done];
        if (record.size() > read.m_dwSize - bytesRead)
        {
            bytesNeeded = bytesRead == 0 ? static_cast<DWORD>(record.size()) : 0;
            return bytesRead == 0 ? ERROR_INSUFFICIENT_BUFFER : ERROR_SUCCESS;
        }
        std::copy(record.begin(), record.end(), buffer + bytesRead);
        bytesRead += static_cast<DWORD>(record.size());
    }
    return ERROR_SUCCESS;
}
} // namespace TestSupport

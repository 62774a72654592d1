#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace TestSupport
{
using RecordBytes = std::vector<std::byte>;

// What a record of the event log says.
struct StoredRecord
{
    std::wstring m_strSource;
    DWORD m_dwEventId = 0;
    std::vector<std::wstring> m_lstStrings;
    WORD m_wType = EVENTLOG_INFORMATION_TYPE;
};

// The record as the system lays it out: fixed fields, source, computer, strings, filled up to a multiple of 4 bytes,
// the length once more.
[[nodiscard]] RecordBytes BytesOf(const StoredRecord& record);
// Another value for one fixed field.
void SetField(RecordBytes& record, DWORD EVENTLOGRECORD::* field, DWORD value);
void SetStringCount(RecordBytes& record, WORD count);

// One call of ReadEventLogW, as it was made.
struct LogRead
{
    DWORD m_dwFlags;
    DWORD m_dwOffset;
    const void* m_pBuffer;
    DWORD m_dwSize;
    DWORD m_dwThreadId;
};

// What one call of ReadEventLogW answers, to the letter. As many bytes as fit are put into the buffer.
struct LogAnswer
{
    DWORD m_dwError = ERROR_SUCCESS; // what it fails with
    RecordBytes m_lstBytes{};
    DWORD m_dwBytesRead = 0;
    DWORD m_dwBytesNeeded = 0;
};

// The event log that a program can read: for the life of the object OpenEventLogW, ReadEventLogW and CloseEventLog of
// the program end here. Reads are sequential, in either direction; they give whole records, fail with 122 and the size
// of the record that does not fit, with 38 at the end. One at a time; any thread.
class ReadableEventLog
{
public:
    ReadableEventLog();
    ReadableEventLog(const ReadableEventLog&) = delete;
    ReadableEventLog& operator=(const ReadableEventLog&) = delete;
    ~ReadableEventLog();

    // The newest record so far, whatever the bytes are.
    void Add(RecordBytes record);
    void Add(const StoredRecord& record) { Add(BytesOf(record)); }

    // What the next read answers that no such answer is waiting for; afterwards records are read where they were.
    void AnswerNext(LogAnswer answer);
    // From now on no log can be opened; ERROR_SUCCESS: it can again.
    void RefuseOpening(DWORD error);

    [[nodiscard]] std::vector<LogRead> Reads() const;
    // Names under which logs were opened, each with the server before it where one was given.
    [[nodiscard]] std::vector<std::wstring> OpenedNames() const;
    // Logs that are open and not closed.
    [[nodiscard]] std::size_t OpenCount() const;

    // Runs at the beginning of each read, on its thread.
    std::function<void()> m_onRead;

private:
    static HANDLE WINAPI Open(LPCWSTR server, LPCWSTR source);
    static WINBOOL WINAPI Read(HANDLE log, DWORD flags, DWORD offset, LPVOID buffer, DWORD size, DWORD* bytesRead,
                               DWORD* bytesNeeded);
    static WINBOOL WINAPI Close(HANDLE log);
    DWORD ReadRecords(HANDLE log, const LogRead& read, std::byte* buffer, DWORD& bytesRead, DWORD& bytesNeeded);

    mutable std::mutex m_lock;
    std::vector<RecordBytes> m_lstRecords;
    std::deque<LogAnswer> m_lstAnswers;
    std::vector<LogRead> m_lstReads;
    std::vector<std::wstring> m_lstNames;
    std::map<HANDLE, std::size_t> m_mapOpen; // with the records that were read
    std::size_t m_nLastHandle = 0;
    DWORD m_dwOpenError = ERROR_SUCCESS;
    Simulator::Redirection<decltype(OpenEventLogW)> m_open;
    Simulator::Redirection<decltype(ReadEventLogW)> m_read;
    Simulator::Redirection<decltype(CloseEventLog)> m_close;
};
} // namespace TestSupport

#include "tests/simulator/machine/EventLogTest.h"

#include "simulator/machine/Redirections.h"

#include <cstring>

namespace Simulator
{
namespace
{
std::filesystem::path NewFolder()
{
    static unsigned number = 0;
    return std::filesystem::temp_directory_path() /
           ("orvik-event-log-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++number));
}

void RedirectOnce()
{
    static const bool done = []
    {
        RedirectEventLogFunctions(Redirections::Instance());
        RedirectEventLogReading(Redirections::Instance());
        return true;
    }();
    static_cast<void>(done);
}

// Characters up to a zero, and the place behind it.
std::wstring TextAt(const BYTE* record, DWORD& offset)
{
    std::wstring text(reinterpret_cast<const wchar_t*>(record + offset));
    offset += static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return text;
}

ReadRecord TakeRecordApart(const BYTE* record)
{
    EVENTLOGRECORD header{};
    std::memcpy(&header, record, sizeof(header));
    ReadRecord result;
    result.m_dwNumber = header.RecordNumber;
    result.m_wType = header.EventType;
    result.m_wCategory = header.EventCategory;
    result.m_dwEventId = header.EventID;
    result.m_dwTime = header.TimeWritten;
    DWORD offset = sizeof(header);
    result.m_strSource = TextAt(record, offset);
    result.m_strComputer = TextAt(record, offset);
    offset = header.StringOffset;
    for (WORD i = 0; i < header.NumStrings; ++i)
        result.m_lstStrings.push_back(TextAt(record, offset));
    result.m_lstData.assign(record + header.DataOffset, record + header.DataOffset + header.DataLength);
    return result;
}
} // namespace

EventLogTest::EventLogTest() : m_folder(NewFolder())
{
    RedirectOnce();
    Journal::Instance().Clear();
    CallPlan::Instance().Reset();
    Facts::Instance().Clear();
    EventLogStore::Instance().Open(m_folder);
}

EventLogTest::~EventLogTest()
{
    EXPECT_THAT(LiveObjects::All(), testing::IsEmpty());
    EventLogStore::Instance().Open({});
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

Orvik::Shared::UniqueEventLog EventLogTest::OpenLog(const wchar_t* source)
{
    return Orvik::Shared::UniqueEventLog(OpenEventLogW(nullptr, source));
}

bool EventLogTest::Close(HANDLE log)
{
    return CloseEventLog(log) != FALSE; // NOCHECK(raw-release): the call that is tested
}

bool EventLogTest::Deregister(HANDLE source)
{
    return DeregisterEventSource(source) != FALSE; // NOCHECK(raw-release): the call that is tested
}

DWORD EventLogTest::Report(const wchar_t* source, std::vector<std::wstring> strings, DWORD eventId, WORD type,
                           WORD category, std::vector<BYTE> data)
{
    const Orvik::Shared::UniqueEventSource handle(RegisterEventSourceW(nullptr, source));
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& text : strings)
        pointers.push_back(text.c_str());
    const bool written =
        ReportEventW(handle.get(), type, category, eventId, nullptr, static_cast<WORD>(pointers.size()),
                     static_cast<DWORD>(data.size()), pointers.data(), data.data()) != FALSE;
    return written ? ERROR_SUCCESS : GetLastError();
}

DWORD EventLogTest::ReadOnce(HANDLE log, DWORD flags, std::vector<BYTE>& buffer, DWORD& read, DWORD& needed,
                             DWORD recordNumber)
{
    const bool succeeded = ReadEventLogW(log, flags, recordNumber, buffer.data(), static_cast<DWORD>(buffer.size()),
                                         &read, &needed) != FALSE;
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

std::vector<ReadRecord> EventLogTest::ReadAll(HANDLE log, DWORD flags, DWORD bufferSize)
{
    std::vector<ReadRecord> records;
    std::vector<BYTE> buffer(bufferSize);
    DWORD read = 0;
    DWORD needed = 0;
    DWORD error = ReadOnce(log, flags, buffer, read, needed);
    for (; error == ERROR_SUCCESS; error = ReadOnce(log, flags, buffer, read, needed))
    {
        for (ReadRecord& record : TakeApart(buffer, read))
            records.push_back(std::move(record));
    }
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_HANDLE_EOF));
    return records;
}

std::vector<ReadRecord> EventLogTest::ReadAll(DWORD flags, DWORD bufferSize)
{
    return ReadAll(OpenLog().get(), flags, bufferSize);
}

std::vector<ReadRecord> EventLogTest::TakeApart(const std::vector<BYTE>& buffer, DWORD size)
{
    std::vector<ReadRecord> records;
    for (DWORD offset = 0; offset < size;)
    {
        DWORD length = 0;
        std::memcpy(&length, &buffer[offset], sizeof(length));
        DWORD lengthAtEnd = 0;
        std::memcpy(&lengthAtEnd, &buffer[offset + length - sizeof(length)], sizeof(length));
        EXPECT_EQ(length, lengthAtEnd);
        records.push_back(TakeRecordApart(&buffer[offset]));
        offset += length;
    }
    return records;
}

std::vector<std::wstring> EventLogTest::FirstStrings(const std::vector<ReadRecord>& records)
{
    std::vector<std::wstring> strings;
    for (const ReadRecord& record : records)
        strings.push_back(record.m_lstStrings.empty() ? std::wstring() : record.m_lstStrings.front());
    return strings;
}
} // namespace Simulator

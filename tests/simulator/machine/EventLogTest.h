#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/machine/EventLogStore.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"

#include <gmock/gmock.h>

namespace Simulator
{
// A record as a program reads it.
struct ReadRecord
{
    DWORD m_dwNumber;
    std::wstring m_strSource;
    std::wstring m_strComputer;
    WORD m_wType;
    WORD m_wCategory;
    DWORD m_dwEventId;
    DWORD m_dwTime;
    std::vector<std::wstring> m_lstStrings;
    std::vector<BYTE> m_lstData;
};

// A machine with an empty event log in a folder of the test's own; the functions of Windows by which this program
// writes and reads it are the machine's. No handle is open at the end.
class EventLogTest : public testing::Test
{
protected:
    EventLogTest();
    ~EventLogTest() override;

    [[nodiscard]] static Orvik::Shared::UniqueEventLog OpenLog(const wchar_t* source = L"Source");
    // The bare calls, for tests of what they answer.
    static bool Close(HANDLE log);
    static bool Deregister(HANDLE source);
    // Registers the source, writes one record and deregisters it. The last error, ERROR_SUCCESS when it was written.
    static DWORD Report(const wchar_t* source, std::vector<std::wstring> strings, DWORD eventId = 1,
                        WORD type = EVENTLOG_INFORMATION_TYPE, WORD category = 0, std::vector<BYTE> data = {});
    // The records from that log until it says that there are no more, in buffers of that size.
    [[nodiscard]] static std::vector<ReadRecord> ReadAll(HANDLE log, DWORD flags, DWORD bufferSize = 65536);
    [[nodiscard]] static std::vector<ReadRecord> ReadAll(DWORD flags, DWORD bufferSize = 65536);
    // One read. The last error, ERROR_SUCCESS when it succeeded.
    static DWORD ReadOnce(HANDLE log, DWORD flags, std::vector<BYTE>& buffer, DWORD& read, DWORD& needed,
                          DWORD recordNumber = 0);
    // The records in a buffer, taken apart by what they say of themselves.
    [[nodiscard]] static std::vector<ReadRecord> TakeApart(const std::vector<BYTE>& buffer, DWORD size);

    [[nodiscard]] static std::vector<std::wstring> FirstStrings(const std::vector<ReadRecord>& records);
    [[nodiscard]] static std::vector<std::string> Calls() { return Journal::Instance().Subjects("call"); }

    static constexpr DWORD Backwards = EVENTLOG_SEQUENTIAL_READ | EVENTLOG_BACKWARDS_READ;
    static constexpr DWORD Forwards = EVENTLOG_SEQUENTIAL_READ | EVENTLOG_FORWARDS_READ;

    const std::filesystem::path m_folder;
};
} // namespace Simulator

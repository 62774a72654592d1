#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/QuietLog.h"
#include "tests/support/HandleCount.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <thread>

using Tests::AuditLogEntry;
using Tests::RecordText;

// Events, copies and scans at the same time, in a machine whose event log can be read and written at once.
namespace
{
TestSupport::ReadableEventLog* g_pLog = nullptr;
decltype(ReportEventW)* g_pfnReport = nullptr;

// What is written can be read from then on.
WINBOOL WINAPI StoringReportEventW(HANDLE source, WORD type, WORD category, DWORD eventId, PSID sid, WORD stringCount,
                                   DWORD dataSize, LPCWSTR* strings, LPVOID data)
{
    const WINBOOL isWritten = g_pfnReport(source, type, category, eventId, sid, stringCount, dataSize, strings, data);
    if (isWritten != FALSE)
        g_pLog->Add({L"Orvik Veritor", eventId, {strings[0]}, type});
    return isWritten;
}

class AuditLogRaceTest : public Tests::AuditLogTest
{
protected:
    AuditLogRaceTest() : m_report("ReportEventW", &StoringReportEventW)
    {
        g_pLog = &m_eventLog;
        g_pfnReport = m_report.Original();
    }
    ~AuditLogRaceTest() override { m_threads.WaitForAll(); }

    // One more entry in the firmware's log.
    void AddEntry()
    {
        const std::lock_guard lock(m_lock);
        m_lstEntries.push_back(Entry(static_cast<int>(m_lstEntries.size())));
        FirmwareHas(Tests::LogXml(m_lstEntries));
    }

    // A quarter of the events.
    void SendEvents()
    {
        for (int i = 0; i < EventsEach; ++i)
        {
            AddEntry();
            _variant_t data = i % 2 == 0 ? _variant_t(30L + i % 10) : _variant_t(L"a text");
            m_hub.ProcessVeritorEvent(131074, &data);
            if (i % 4 == 3)
                m_hub.CreateHashKeysForVeritorEventLogs();
        }
    }

    void Race()
    {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([this] { SendEvents(); });
        for (int i = 0; i < EventsEach; ++i)
        {
            m_hub.ProcessVeritorLog(0);
            m_hub.CreateHashKeysForVeritorEventLogs();
            Sleep(2);
        }
        for (std::thread& thread : threads)
            thread.join();
        m_threads.Forget();
    }

    static constexpr int EventsEach = 12;

    const Tests::QuietLog m_quiet;
    Simulator::Redirection<decltype(ReportEventW)> m_report;
    std::mutex m_lock;
    std::vector<AuditLogEntry> m_lstEntries;
};
} // namespace

TEST_F(AuditLogRaceTest, EventsFromFourThreadsAgainstCopiesAndScans_EachEntryIsWrittenOnce)
{
    Race();
    // The copy that the last event started saw every entry.
    std::map<std::wstring, int> writes;
    for (const std::wstring& text : WrittenTexts())
        ++writes[text];
    ASSERT_EQ(m_lstEntries.size(), 4u * EventsEach);
    for (const AuditLogEntry& entry : m_lstEntries)
        EXPECT_EQ(writes[RecordText(entry)], 1) << testing::PrintToString(entry.m_strTimestamp);
    EXPECT_EQ(writes.size(), m_lstEntries.size());
    EXPECT_EQ(m_eventLog.OpenCount(), 0u);
    EXPECT_EQ(OpenSources(), 0u);
}

TEST_F(AuditLogRaceTest, RaceAfterRace_LeavesNoHandle)
{
    Race();
    Race();
    const unsigned before = TestSupport::OpenHandleCount();
    constexpr unsigned races = 6;
    for (unsigned i = 0; i < races; ++i)
        Race();
    // A lock that somebody waits for, for the first time, gets an event that it keeps.
    EXPECT_LT(TestSupport::OpenHandleCount(), before + races);
    EXPECT_EQ(Written().size(), (2 + races) * 4 * EventsEach);
}

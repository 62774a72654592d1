#include "tests/simulator/machine/EventLogTest.h"

#include <ctime>
#include <fstream>
#include <set>
#include <thread>

namespace
{
using namespace Simulator;
using testing::ElementsAre;

class EventLogWrite : public EventLogTest
{
};

constexpr HRESULT g_denied = HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);

TEST_F(EventLogWrite, Report_IsReadBackAsItWasWritten)
{
    const auto before = static_cast<DWORD>(std::time(nullptr));
    EXPECT_EQ(Report(L"Orvik Veritor", {L"first\r\nline", L"Überschrift ☂"}, 0xC0000007, EVENTLOG_WARNING_TYPE, 5,
                     {0, 1, 0xFF}),
              static_cast<DWORD>(ERROR_SUCCESS));
    const std::vector<ReadRecord> records = ReadAll(Backwards);
    ASSERT_EQ(records.size(), 1u);
    const ReadRecord& record = records.front();
    EXPECT_EQ(record.m_dwNumber, 1u);
    EXPECT_EQ(record.m_strSource, L"Orvik Veritor");
    EXPECT_FALSE(record.m_strComputer.empty());
    EXPECT_EQ(record.m_wType, EVENTLOG_WARNING_TYPE);
    EXPECT_EQ(record.m_wCategory, 5);
    EXPECT_EQ(record.m_dwEventId, 0xC0000007);
    EXPECT_THAT(record.m_lstStrings, ElementsAre(L"first\r\nline", L"Überschrift ☂"));
    EXPECT_THAT(record.m_lstData, ElementsAre(0, 1, 0xFF));
    EXPECT_GE(record.m_dwTime, before);
    EXPECT_LE(record.m_dwTime, static_cast<DWORD>(std::time(nullptr)));
}

TEST_F(EventLogWrite, Report_WithoutStringsAndData_IsARecord)
{
    EXPECT_EQ(Report(L"Source", {}, 3, EVENTLOG_SUCCESS), static_cast<DWORD>(ERROR_SUCCESS));
    const std::vector<ReadRecord> records = ReadAll(Backwards);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].m_wType, EVENTLOG_SUCCESS);
    EXPECT_TRUE(records[0].m_lstStrings.empty());
}

TEST_F(EventLogWrite, Report_EachType_IsKept)
{
    for (WORD type = 0; type <= EVENTLOG_AUDIT_FAILURE; ++type)
    {
        Report(L"Source", {L"text"}, 1, type);
        EXPECT_EQ(ReadAll(Backwards).front().m_wType, type);
    }
}

TEST_F(EventLogWrite, Report_StringAtTheLimit_IsWritten_LongerOneIsRefused)
{
    EXPECT_EQ(Report(L"Source", {std::wstring(31'839, L'x')}), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(Report(L"Source", {L"short", std::wstring(31'840, L'x')}), static_cast<DWORD>(RPC_S_INVALID_BOUND));
    const std::vector<ReadRecord> records = ReadAll(Backwards);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].m_lstStrings.front().size(), 31'839u);
    EXPECT_THAT(Journal::Instance().Subjects("event-log-refusal"), ElementsAre("Source"));
}

TEST_F(EventLogWrite, Report_DataAtTheLimit_IsWritten_MoreIsRefused)
{
    EXPECT_EQ(Report(L"Source", {}, 1, 4, 0, std::vector<BYTE>(61'440)), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(Report(L"Source", {}, 1, 4, 0, std::vector<BYTE>(61'441)), static_cast<DWORD>(RPC_S_INVALID_BOUND));
    EXPECT_EQ(ReadAll(Backwards).size(), 1u);
}

TEST_F(EventLogWrite, Report_MissingStringOrData_IsRefused)
{
    const Orvik::Shared::UniqueEventSource source(RegisterEventSourceW(nullptr, L"Source"));
    const wchar_t* strings[] = {nullptr};
    EXPECT_FALSE(ReportEventW(source.get(), 4, 0, 1, nullptr, 1, 0, strings, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(ReportEventW(source.get(), 4, 0, 1, nullptr, 1, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(ReportEventW(source.get(), 4, 0, 1, nullptr, 0, 4, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(ReadAll(Backwards).empty());
}

TEST_F(EventLogWrite, HandleThatIsNotOpen_IsRefused)
{
    HANDLE source = RegisterEventSourceW(nullptr, L"Source");
    EXPECT_TRUE(Deregister(source));
    EXPECT_FALSE(Deregister(source));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(ReportEventW(source, 4, 0, 1, nullptr, 0, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegisterEventSourceW(nullptr, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(EventLogWrite, Success_LeavesTheLastErrorAlone)
{
    SetLastError(4711);
    const HANDLE source = RegisterEventSourceW(nullptr, L"Source");
    const wchar_t* strings[] = {L"text"};
    EXPECT_TRUE(ReportEventW(source, 4, 0, 1, nullptr, 1, 0, strings, nullptr));
    EXPECT_TRUE(Deregister(source));
    EXPECT_EQ(GetLastError(), 4711u);
}

TEST_F(EventLogWrite, EachCall_IsJournalledAndFailsByPlan)
{
    CallPlan::Instance().Fail("RegisterEventSourceW", g_denied);
    EXPECT_EQ(RegisterEventSourceW(nullptr, L"Source"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    CallPlan::Instance().Fail("ReportEventW", HRESULT_FROM_WIN32(ERROR_LOG_FILE_FULL));
    EXPECT_EQ(Report(L"Source", {L"text"}, 9, EVENTLOG_ERROR_TYPE), static_cast<DWORD>(ERROR_LOG_FILE_FULL));
    EXPECT_THAT(Calls(),
                ElementsAre("RegisterEventSourceW", "RegisterEventSourceW", "ReportEventW", "DeregisterEventSource"));
    const nlohmann::json details = Journal::Instance().Entries()[2].m_details;
    EXPECT_EQ(details.at("source"), "Source");
    EXPECT_EQ(details.at("type"), "error");
    EXPECT_EQ(details.at("event-id"), 9);
    EXPECT_TRUE(ReadAll(Backwards).empty());

    const HANDLE source = RegisterEventSourceW(nullptr, L"Source");
    CallPlan::Instance().Fail("DeregisterEventSource", g_denied);
    EXPECT_FALSE(Deregister(source));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(Deregister(source));
}

TEST_F(EventLogWrite, SourceThatIsRefused_OthersAreWritten)
{
    Facts::Instance().Set("/event-log/refuses", {{"Refused", "0x80070005"}});
    EXPECT_EQ(Report(L"Refused", {L"text"}), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(Report(L"refused", {L"text"}), static_cast<DWORD>(ERROR_SUCCESS));
    Facts::Instance().Merge({{"event-log", {{"refuses", {{"Refused", nullptr}}}}}});
    EXPECT_EQ(Report(L"Refused", {L"text"}), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST_F(EventLogWrite, SourceAtItsCapacity_LogIsFullForItAlone)
{
    Report(L"Small", {L"before the fact"});
    Facts::Instance().Set("/event-log/capacity", {{"Small", 2}});
    EXPECT_EQ(Report(L"Small", {L"second"}), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(Report(L"Small", {L"third"}), static_cast<DWORD>(ERROR_LOG_FILE_FULL));
    EXPECT_EQ(Report(L"Other", {L"text"}), static_cast<DWORD>(ERROR_SUCCESS));
    Facts::Instance().Set("/event-log/capacity", {{"Small", 3}});
    EXPECT_EQ(Report(L"Small", {L"third"}), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(Report(L"Small", {L"fourth"}), static_cast<DWORD>(ERROR_LOG_FILE_FULL));
}

TEST_F(EventLogWrite, FileThatCannotBeMade_RecordIsRefused)
{
    // Where the folder would have to be is a file.
    std::filesystem::create_directories(m_folder);
    const std::filesystem::path place = m_folder / "place";
    std::ofstream(place) << "a file";
    EventLogStore::Instance().Open(place);
    EXPECT_NE(Report(L"Source", {L"text"}), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_THAT(Journal::Instance().Subjects("event-log"), testing::IsEmpty());
}

TEST_F(EventLogWrite, ManyThreads_EachRecordOnce)
{
    constexpr int threadCount = 4;
    constexpr int recordCount = 100;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back(
            [t]
            {
                for (int i = 0; i < recordCount; ++i)
                    Report(L"Source", {std::to_wstring(t) + L"-" + std::to_wstring(i)});
            });
    for (std::thread& thread : threads)
        thread.join();
    const std::vector<std::wstring> strings = FirstStrings(ReadAll(Forwards));
    EXPECT_EQ(strings.size(), std::size_t{threadCount * recordCount});
    EXPECT_EQ(std::set<std::wstring>(strings.begin(), strings.end()).size(), strings.size());
}
} // namespace

#include "tests/simulator/machine/EventLogTest.h"

namespace
{
using namespace Simulator;
using testing::ElementsAre;

class EventLogReadFailure : public EventLogTest
{
protected:
    // The last error of a read; bytes read and needed as they are after it.
    DWORD Read(HANDLE log, DWORD flags = Backwards)
    {
        m_dwRead = 4711;
        m_dwNeeded = 4711;
        return ReadOnce(log, flags, m_buffer, m_dwRead, m_dwNeeded);
    }

    std::vector<BYTE> m_buffer = std::vector<BYTE>(1024);
    DWORD m_dwRead = 0;
    DWORD m_dwNeeded = 0;
};

TEST_F(EventLogReadFailure, Flags_OneWayAndAtMostOneDirection)
{
    const auto log = OpenLog();
    constexpr DWORD bothWays = EVENTLOG_SEQUENTIAL_READ | EVENTLOG_SEEK_READ | EVENTLOG_FORWARDS_READ;
    constexpr DWORD bothDirections = Forwards | EVENTLOG_BACKWARDS_READ;
    for (const DWORD flags : {DWORD{0}, DWORD{EVENTLOG_FORWARDS_READ}, bothWays, bothDirections})
        EXPECT_EQ(Read(log.get(), flags), static_cast<DWORD>(ERROR_INVALID_PARAMETER)) << flags;
    EXPECT_EQ(m_dwRead, 0u);
}

TEST_F(EventLogReadFailure, MissingPlaces_AreRefused)
{
    const auto log = OpenLog();
    DWORD size = 0;
    EXPECT_FALSE(ReadEventLogW(log.get(), Backwards, 0, nullptr, 16, &size, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(ReadEventLogW(log.get(), Backwards, 0, m_buffer.data(), 16, nullptr, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(ReadEventLogW(log.get(), Backwards, 0, m_buffer.data(), 16, &size, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(EventLogReadFailure, BufferBeyondTheLargest_IsRefused)
{
    Report(L"Source", {L"text"});
    const auto log = OpenLog();
    m_buffer.resize(0x80000);
    EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    m_buffer.resize(0x7FFFF);
    EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST_F(EventLogReadFailure, HandleThatIsNotOpen_IsRefused)
{
    HANDLE log = OpenEventLogW(nullptr, L"Source");
    EXPECT_TRUE(Close(log));
    EXPECT_FALSE(Close(log));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(Read(log), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(OpenEventLogW(nullptr, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(EventLogReadFailure, Success_LeavesTheLastErrorAlone)
{
    Report(L"Source", {L"text"});
    SetLastError(4711);
    HANDLE log = OpenEventLogW(nullptr, L"Source");
    EXPECT_TRUE(ReadEventLogW(log, Backwards, 0, m_buffer.data(), 1024, &m_dwRead, &m_dwNeeded));
    EXPECT_TRUE(Close(log));
    EXPECT_EQ(GetLastError(), 4711u);
}

TEST_F(EventLogReadFailure, EachCall_IsJournalledAndFailsByPlan)
{
    CallPlan::Instance().Fail("OpenEventLogW", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_EQ(OpenEventLogW(nullptr, L"Source"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(RPC_S_SERVER_UNAVAILABLE));

    Report(L"Source", {L"text"});
    Journal::Instance().Clear();
    HANDLE log = OpenEventLogW(nullptr, L"Source");
    CallPlan::Instance().Fail("ReadEventLogW", HRESULT_FROM_WIN32(ERROR_EVENTLOG_FILE_CORRUPT));
    EXPECT_EQ(Read(log), static_cast<DWORD>(ERROR_EVENTLOG_FILE_CORRUPT));
    EXPECT_EQ(m_dwRead, 0u);
    EXPECT_EQ(m_dwNeeded, 0u);
    EXPECT_EQ(Read(log), static_cast<DWORD>(ERROR_SUCCESS));
    CallPlan::Instance().Fail("CloseEventLog", HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(Close(log));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(Close(log));
    EXPECT_THAT(Calls(),
                ElementsAre("OpenEventLogW", "ReadEventLogW", "ReadEventLogW", "CloseEventLog", "CloseEventLog"));
}

TEST_F(EventLogReadFailure, Calls_AreReadable)
{
    Report(L"Source", {L"text"});
    Journal::Instance().Clear();
    HANDLE log = OpenEventLogW(nullptr, L"Orvik Veritor");
    EXPECT_EQ(Read(log), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Close(log));
    const std::vector<JournalEntry> entries = Journal::Instance().Entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].m_details, (nlohmann::json{{"arguments", {0, "Orvik Veritor"}}}));
    EXPECT_EQ(entries[1].m_details,
              (nlohmann::json{
                  {"source", "Orvik Veritor"}, {"flags", "sequential backwards"}, {"record", 0}, {"size", 1024}}));
    EXPECT_EQ(entries[2].m_details, (nlohmann::json{{"source", "Orvik Veritor"}, {"records", 1}}));
}

TEST_F(EventLogReadFailure, BufferTooSmallByPlan_TwiceAsMuchIsAskedForAndNothingIsLost)
{
    Report(L"Source", {L"text"});
    const auto log = OpenLog();
    CallPlan::Instance().Fail("ReadEventLogW", HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(m_dwNeeded, 2048u);
    EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(TakeApart(m_buffer, m_dwRead).size(), 1u);
}

TEST_F(EventLogReadFailure, BufferByFact_IsWantedUntilTheFactIsGone)
{
    Report(L"Source", {L"text"});
    const auto log = OpenLog();
    Facts::Instance().Set("/event-log/buffer", 200'000);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(m_dwNeeded, 200'000u);
    m_buffer.resize(200'000);
    EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_SUCCESS));
    m_buffer.resize(1024);
    Facts::Instance().Merge({{"event-log", {{"buffer", nullptr}}}});
    EXPECT_EQ(Read(log.get()), static_cast<DWORD>(ERROR_HANDLE_EOF));
}
} // namespace

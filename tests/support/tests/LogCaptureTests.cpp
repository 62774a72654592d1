#include "tests/support/LogCapture.h"

#include "shared/Log.h"
#include "tests/support/EventLogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

bool Close(HANDLE source)
{
    return DeregisterEventSource(source) != FALSE; // NOCHECK(raw-release): the call that the capture watches
}

TEST(LogCapture, NewTest_BeginsWithAnEmptyLog)
{
    EXPECT_TRUE(NothingLogged());
    Log(Level::Error, "F", L"left for the next test");
    EXPECT_FALSE(NothingLogged());
}

TEST(LogCapture, TestAfterIt_BeginsWithAnEmptyLogToo)
{
    EXPECT_TRUE(NothingLogged());
}

TEST(LogCapture, Records_AreTakenApart)
{
    Log(Level::Information, "N::C::F", L"a|b|\x20AC");
    const auto records = LogRecords();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].m_nLevel, Level::Information);
    EXPECT_EQ(records[0].m_strFunction, "N::C::F");
    EXPECT_EQ(records[0].m_strMessage, L"a|b|\x20AC");
    EXPECT_EQ(records[0].m_dwThreadId, GetCurrentThreadId());
    EXPECT_TRUE(records[0].m_strLine.ends_with(L"|Information|N::C::F|a|b|\x20AC"));
}

TEST(LogCapture, EveryLevelUpToError_IsCaptured)
{
    for (int level = 0; level <= 6; ++level)
        Log(level, "F", L"x");
    EXPECT_THAT(LogLines(), ElementsAre(L"TraceIn|F|x", L"TraceOut|F|x", L"Verbose|F|x", L"Information|F|x",
                                        L"Warning|F|x", L"Error|F|x"));
    EXPECT_THAT(OperationalLines(), ElementsAre(L"Verbose|F|x", L"Information|F|x", L"Warning|F|x", L"Error|F|x"));
}

TEST(LogCapture, LinesOfOneFunction_LeaveOthersOut)
{
    Log(Level::Verbose, "F", L"");
    Log(Level::Verbose, "G", L"other");
    Log(Level::Error, "F", L"text");
    EXPECT_THAT(LogLines("F"), ElementsAre(L"Verbose|", L"Error|text"));
    EXPECT_THAT(LogLines("H"), IsEmpty());
}

TEST(LogCapture, Assertions_TellWhatIsThere)
{
    Log(Level::Verbose, "F", L"text");
    Log(Level::Verbose, "F", L"text");
    EXPECT_EQ(LogCount(Level::Verbose, "F", L"text"), 2u);
    EXPECT_TRUE(Logged(Level::Verbose, "F", L"text"));
    EXPECT_FALSE(NotLogged(Level::Verbose, "F", L"text"));
    EXPECT_FALSE(Logged(Level::Error, "F", L"text"));
    EXPECT_FALSE(Logged(Level::Verbose, "G", L"text"));
    EXPECT_FALSE(Logged(Level::Verbose, "F", L"tex"));
    EXPECT_TRUE(NotLogged(Level::Verbose, "F", L"tex"));
    EXPECT_THAT(Logged(Level::Error, "F", L"x").message(), HasSubstr("Verbose|F|text"));
    EXPECT_THAT(LogRecords(), Contains(IsRecord(Level::Verbose, "F", StartsWith(L"te"))));
    EXPECT_THAT(LogRecords(), Not(Contains(IsRecord(Level::Verbose, "F", StartsWith(L"ex")))));
}

TEST(LogCapture, OtherEventSources_AreNotTheLog)
{
    const HANDLE source = RegisterEventSourceW(nullptr, L"Another source");
    LPCWSTR text = L"not a record line";
    EXPECT_TRUE(ReportEventW(source, EVENTLOG_WARNING_TYPE, 3, 9, nullptr, 1, 0, &text, nullptr));
    EXPECT_TRUE(NothingLogged());
    const auto events = EventLogCapture::Events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].m_strSource, L"Another source");
    EXPECT_EQ(events[0].m_wType, EVENTLOG_WARNING_TYPE);
    EXPECT_EQ(events[0].m_wCategory, 3);
    EXPECT_EQ(events[0].m_dwEventId, 9u);
    EXPECT_THAT(events[0].m_lstStrings, ElementsAre(L"not a record line"));
    EXPECT_TRUE(Close(source));
}

TEST(LogCapture, ClosedSource_IsRefusedAndShown)
{
    const HANDLE source = RegisterEventSourceW(nullptr, L"Another source");
    EXPECT_THAT(EventLogCapture::OpenSources(), Contains(L"Another source"));
    EXPECT_TRUE(Close(source));
    EXPECT_THAT(EventLogCapture::OpenSources(), Not(Contains(L"Another source")));
    EXPECT_FALSE(Close(source));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    LPCWSTR text = L"x";
    EXPECT_FALSE(ReportEventW(source, 0, 0, 0, nullptr, 1, 0, &text, nullptr));
    EXPECT_EQ(EventLogCapture::Events().at(0).m_strSource, L"");
}
} // namespace

#include "shared/LogData.h"
#include "shared/Logger.h"
#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerConsole.h"
#include "shared/OrvikLogListenerDebug.h"
#include "shared/OrvikLogListenerEvent.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/shared/Outlets.h"
#include "tests/support/EventLogCapture.h"
#include "tests/support/PolicyKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using LogData = COrvikLogListener::LogData;

class EventListener : public testing::Test
{
protected:
    void SetRange(const wchar_t* minimum, const wchar_t* maximum)
    {
        m_product.Text(L"MinLogLevel", minimum).Text(L"MaxLogLevel", maximum);
    }

    // The event that one record of that level gives, if any.
    static std::optional<ReportedEvent> Write(COrvikLogListenerEvent& listener, int level)
    {
        EventLogCapture::Clear();
        listener.Write(LogData(level, "N::C::F", L"text"));
        const auto events = EventLogCapture::Events();
        return events.empty() ? std::nullopt : std::optional(events.front());
    }

    PolicyKey m_product{LoggingKey};
};

TEST_F(EventListener, ItsKind_IsOne)
{
    EXPECT_EQ(COrvikLogListenerEvent(Level::Error, LoggingPolicy()).GetType(), 1u);
}

TEST_F(EventListener, EventSource_IsNamedAfterTheProgramAndLivesWithTheListener)
{
    const auto count = []
    {
        const auto sources = EventLogCapture::OpenSources();
        return std::count(sources.begin(), sources.end(), L"shared_tests");
    };
    const auto before = count();
    {
        const COrvikLogListenerEvent listener(Level::Error, LoggingPolicy());
        EXPECT_EQ(count(), before + 1);
    }
    EXPECT_EQ(count(), before);
}

TEST_F(EventListener, Record_BecomesAnEventWithItsLine)
{
    COrvikLogListenerEvent listener(Level::Error, LoggingPolicy());
    const LogData data(Level::Error, "N::C::F", L"text");
    EventLogCapture::Clear();
    listener.Write(data);
    const auto events = EventLogCapture::Events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].m_strSource, L"shared_tests");
    EXPECT_EQ(events[0].m_wCategory, 0);
    EXPECT_EQ(events[0].m_dwEventId, 5u);
    EXPECT_FALSE(events[0].m_bHasUserSid);
    EXPECT_EQ(events[0].m_dwDataSize, 0u);
    EXPECT_THAT(events[0].m_lstStrings, testing::ElementsAre(data.GetLine()));
}

TEST_F(EventListener, EachLevel_HasItsTypeAndIdentifier)
{
    SetRange(L"TraceIn", L"Diag");
    COrvikLogListenerEvent listener(Level::Error, LoggingPolicy());
    for (int level = 0; level <= 5; ++level)
    {
        const auto event = Write(listener, level);
        ASSERT_TRUE(event) << level;
        EXPECT_EQ(event->m_dwEventId, static_cast<DWORD>(level));
        const WORD type = level == 4   ? EVENTLOG_WARNING_TYPE
                          : level == 5 ? EVENTLOG_ERROR_TYPE
                                       : EVENTLOG_INFORMATION_TYPE;
        EXPECT_EQ(event->m_wType, type) << level;
    }
}

TEST_F(EventListener, DiagRecord_NeverReachesTheEventLog)
{
    for (const wchar_t* maximum : {L"Diag", L"Never"})
    {
        SetRange(L"TraceIn", maximum);
        COrvikLogListenerEvent listener(Level::Error, LoggingPolicy());
        EXPECT_FALSE(Write(listener, 6)) << maximum;
        EXPECT_FALSE(Write(listener, 7)) << maximum;
        EXPECT_FALSE(Write(listener, 99)) << maximum;
    }
}

TEST_F(EventListener, LevelBelowTheMinimum_IsNotWritten)
{
    SetRange(L"Warning", L"Error");
    COrvikLogListenerEvent listener(Level::Error, LoggingPolicy());
    EXPECT_FALSE(Write(listener, 3));
    EXPECT_TRUE(Write(listener, 4));
}

TEST_F(EventListener, LevelAboveTheMaximum_IsWrittenUpToError)
{
    SetRange(L"TraceIn", L"Verbose");
    COrvikLogListenerEvent listener(Level::Error, LoggingPolicy());
    EXPECT_TRUE(Write(listener, 5));
    EXPECT_FALSE(Write(listener, 6));
}

unsigned g_deregistered;

HANDLE WINAPI NoEventSource(LPCWSTR, LPCWSTR)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

WINBOOL WINAPI CountedDeregister(HANDLE)
{
    ++g_deregistered;
    return TRUE;
}

TEST_F(EventListener, NoEventSource_RecordsAreLostSilently)
{
    g_deregistered = 0;
    const Simulator::Redirection<decltype(RegisterEventSourceW)> noSource("RegisterEventSourceW", &NoEventSource);
    const Simulator::Redirection<decltype(DeregisterEventSource)> deregister("DeregisterEventSource",
                                                                             &CountedDeregister);
    {
        const auto logger = CLogger::Create(Level::Error, ListenerKind::Event);
        SetLastError(ERROR_FILE_NOT_FOUND);
        logger->Log(Level::Error, "F", L"x");
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
        ASSERT_EQ(EventLogCapture::Events().size(), 1u);
        EXPECT_EQ(EventLogCapture::Events()[0].m_hSource, nullptr);
    }
    EXPECT_EQ(g_deregistered, 0u);
}

WINBOOL WINAPI RefusedReportEvent(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, LPCWSTR*, LPVOID)
{
    SetLastError(ERROR_LOG_FILE_FULL);
    return FALSE;
}

TEST_F(EventListener, FullEventLog_IsNotNoticedByTheCaller)
{
    const auto logger = CLogger::Create(Level::Error, ListenerKind::Event | ListenerKind::Debug);
    const Outlets outlets;
    const Simulator::Redirection<decltype(ReportEventW)> full("ReportEventW", &RefusedReportEvent);
    SetLastError(ERROR_FILE_NOT_FOUND);
    logger->Log(Level::Error, "F", L"x");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(outlets.DebugTexts(), testing::ElementsAre(L"F : x\r\n"));
}

TEST(DebugListener, ItsKind_IsTwo)
{
    EXPECT_EQ(COrvikLogListenerDebug(Level::Error, LoggingPolicy()).GetType(), 2u);
}

TEST(DebugListener, Record_GoesToTheDebuggerInShortForm)
{
    const Outlets outlets;
    COrvikLogListenerDebug listener(Level::Error, LoggingPolicy());
    listener.Write(LogData(Level::Verbose, "N::C::F", L"text \x20AC 100 %s"));
    listener.Write(LogData(Level::Diag, "", L""));
    EXPECT_THAT(outlets.DebugTexts(), testing::ElementsAre(L"N::C::F : text \x20AC 100 %s\r\n", L" : \r\n"));
}

TEST(ConsoleListener, ItsKind_IsSixteen)
{
    EXPECT_EQ(COrvikLogListenerConsole(Level::Error, LoggingPolicy()).GetType(), 16u);
}

// Standard output is in text mode: it makes a carriage return of its own for the line feed.
TEST(ConsoleListener, Record_IsPrintedInShortForm)
{
    Outlets outlets;
    COrvikLogListenerConsole listener(Level::Error, LoggingPolicy());
    listener.Write(LogData(Level::Verbose, "N::C::F", L"text 100 %s"));
    EXPECT_EQ(outlets.Printed(), "N::C::F : text 100 %s\r\r\n");
}

// What two records print, the first of which has that message.
std::string PrintedOf(const wchar_t* message)
{
    Outlets outlets;
    COrvikLogListenerConsole listener(Level::Error, LoggingPolicy());
    listener.Write(LogData(Level::Verbose, "F", message));
    listener.Write(LogData(Level::Verbose, "F", L"next"));
    return outlets.Printed();
}

TEST(ConsoleListener, CharacterThatTheCodePageLacks_CostsNoOther)
{
    EXPECT_EQ(PrintedOf(L"\xA7 1 costs 5 \x20AC, \xD83D\xDE00"), "F : \xA7 1 costs 5 ?, ??\r\r\nF : next\r\r\n");
}
} // namespace

#include "shared/Logger.h"

#include "tests/shared/Outlets.h"
#include "tests/support/EventLogCapture.h"
#include "tests/support/HandleCount.h"
#include "tests/support/PolicyKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

constexpr unsigned g_event = ListenerKind::Event;
constexpr unsigned g_debug = ListenerKind::Debug;
constexpr unsigned g_console = ListenerKind::Console;

class LoggerCreation : public testing::Test
{
protected:
    // Where an Error record of a logger with this default mask arrives.
    Strings ArrivalsOfError(unsigned defaultMask)
    {
        const auto logger = CLogger::Create(Level::Error, defaultMask);
        logger->Log(Level::Error, "F", L"x");
        return m_outlets.Take();
    }

    Strings ArrivalsWith(const wchar_t* loggingType, unsigned defaultMask = g_event)
    {
        m_product.Text(L"LoggingType", loggingType);
        return ArrivalsOfError(defaultMask);
    }

    PolicyKey m_product{LoggingKey};
    Outlets m_outlets;
};

TEST_F(LoggerCreation, NoPolicyKeys_EventListenerTakesErrorsOnly)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
    const auto logger = CLogger::Create(Level::Error, g_event);
    EXPECT_EQ(logger->EnabledLevels(), 1u << Level::Error);
    logger->Log(Level::Warning, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), IsEmpty());
    logger->Log(Level::Diag, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), IsEmpty());
    logger->Log(Level::Error, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), ElementsAre("event"));
}

TEST_F(LoggerCreation, DefaultMask_ChoosesTheListeners)
{
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("event"));
    EXPECT_THAT(ArrivalsOfError(g_debug), ElementsAre("debug"));
    EXPECT_THAT(ArrivalsOfError(g_console), ElementsAre("console"));
    EXPECT_THAT(ArrivalsOfError(0), IsEmpty());
}

TEST_F(LoggerCreation, SeveralListeners_StandInTheFixedOrder)
{
    EXPECT_THAT(ArrivalsOfError(g_event | g_debug | g_console), ElementsAre("event", "debug", "console"));
}

TEST_F(LoggerCreation, OneWord_ChoosesOneListener)
{
    EXPECT_THAT(ArrivalsWith(L"EVENT", g_debug), ElementsAre("event"));
    EXPECT_THAT(ArrivalsWith(L"DEBUG"), ElementsAre("debug"));
    EXPECT_THAT(ArrivalsWith(L"CONSOLE"), ElementsAre("console"));
}

TEST_F(LoggerCreation, WordsInAnyCaseAndSeparator_AreFound)
{
    for (const wchar_t* text :
         {L"event,debug", L"Debug;Event", L"DEBUGEVENT", L"  xEventxDebugx", L"event debug event"})
        EXPECT_THAT(ArrivalsWith(text, g_console), ElementsAre("event", "debug")) << text;
}

TEST_F(LoggerCreation, FileAndDebugInLowerCase_LeaveTheEventLogAlone)
{
    EXPECT_THAT(ArrivalsWith(L"file, debug"), ElementsAre("debug"));
}

TEST_F(LoggerCreation, FileAlone_IsAChoice)
{
    EXPECT_THAT(ArrivalsWith(L"FILE"), IsEmpty()) << "neither the event log nor another outlet of the default";
}

TEST_F(LoggerCreation, NoKnownWord_FallsBackToTheDefault)
{
    for (const wchar_t* text : {L"NONE", L"", L"EVEN", L"1", L"\u0130VENT"})
        EXPECT_THAT(ArrivalsWith(text), ElementsAre("event")) << text;
}

TEST_F(LoggerCreation, UnusableValue_FallsBackToTheDefault)
{
    m_product.Number(L"LoggingType", 2);
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("event"));
    for (const DWORD type : {REG_EXPAND_SZ, REG_MULTI_SZ, REG_BINARY})
    {
        m_product.Text(L"LoggingType", L"DEBUG", type);
        EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("event")) << type;
    }
    auto odd = BytesOf(L"DEBUG");
    odd.push_back(0);
    m_product.Raw(L"LoggingType", REG_SZ, odd);
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("event"));
}

TEST_F(LoggerCreation, ValueOf64Characters_IsUsedAndALongerOneIsNot)
{
    std::wstring text = std::wstring(58, L' ') + L"DEBUG";
    EXPECT_THAT(ArrivalsWith(text.c_str()), ElementsAre("debug")) << "63 and the terminator";
    text.insert(0, 1, L' ');
    m_product.Raw(L"LoggingType", REG_SZ, BytesOf(text));
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("debug")) << "64 without terminator";
    EXPECT_THAT(ArrivalsWith(text.c_str()), ElementsAre("event")) << "64 and the terminator";
}

TEST_F(LoggerCreation, ValueWithoutTerminator_IsUsed)
{
    m_product.Raw(L"LoggingType", REG_SZ, BytesOf(L"DEBUG"));
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("debug"));
}

TEST_F(LoggerCreation, ModuleKey_WinsOverTheProductKey)
{
    m_product.Text(L"LoggingType", L"CONSOLE");
    PolicyKey module(LoggingModuleKey());
    module.Text(L"LoggingType", L"DEBUG");
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("debug"));
    module.Text(L"LoggingType", L"NONE");
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("event"));
    module.Remove(L"LoggingType");
    EXPECT_THAT(ArrivalsOfError(g_event), ElementsAre("console"));
}

TEST_F(LoggerCreation, DefaultMinimum_IsThatOfEveryListener)
{
    const auto logger = CLogger::Create(Level::Verbose, g_event | g_debug | g_console);
    logger->Log(Level::Verbose, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), ElementsAre("event", "debug", "console"));
    logger->Log(Level::TraceOut, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), IsEmpty());
}

TEST_F(LoggerCreation, LevelPolicy_HoldsForEveryListener)
{
    m_product.Text(L"MinLogLevel", L"warning").Text(L"MaxLogLevel", L"WARNING");
    const auto logger = CLogger::Create(Level::Error, g_event | g_debug | g_console);
    logger->Log(Level::Warning, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), ElementsAre("event", "debug", "console"));
    logger->Log(Level::Error, "F", L"x");
    EXPECT_THAT(m_outlets.Take(), IsEmpty());
}

TEST_F(LoggerCreation, MadeAndDeletedAgainAndAgain_LeavesNoHandleAndNoSource)
{
    PolicyKey module(LoggingModuleKey());
    const auto make = [] { return CLogger::Create(Level::Error, g_event | g_debug | g_console); };
    make();
    const unsigned handles = OpenHandleCount();
    const std::size_t sources = EventLogCapture::OpenSources().size();
    for (int i = 0; i < 50; ++i)
        make();
    EXPECT_EQ(OpenHandleCount(), handles);
    EXPECT_EQ(EventLogCapture::OpenSources().size(), sources);
}
} // namespace

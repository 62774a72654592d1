#include "shared/Logger.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/shared/ListenerDouble.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;
using testing::IsEmpty;

// Builds loggers out of doubles and keeps what they wrote: "<listener>:<level>:<function>:<message>".
class Logger : public testing::Test
{
public:
    Logger& Add(const wchar_t* minimum, const wchar_t* maximum, unsigned kind = ListenerKind::Debug)
    {
        const auto number = static_cast<wchar_t>(L'1' + m_nListeners);
        m_lstListeners.at(m_nListeners++) = ListenerDouble::Make(
            minimum, maximum,
            [this, number](const COrvikLogListener::LogData& data)
            {
                m_lstWritten.push_back(number + (L":" + std::to_wstring(data.Level())) + L":" +
                                       std::wstring(data.FunctionName().begin(), data.FunctionName().end()) + L":" +
                                       data.Message());
            },
            kind);
        return *this;
    }

    CLogger& Make()
    {
        m_pLogger = std::make_unique<CLogger>(std::move(m_lstListeners));
        return *m_pLogger;
    }

    [[nodiscard]] std::wstring LastMessage() const
    {
        return m_lstWritten.empty() ? L"(nothing)" : m_lstWritten.back().substr(6);
    }

    std::vector<std::wstring> m_lstWritten;
    CLogger::Listeners m_lstListeners;
    std::size_t m_nListeners = 0;
    std::unique_ptr<CLogger> m_pLogger;
};

TEST_F(Logger, NoListeners_NothingIsEnabled)
{
    CLogger& logger = Make();
    EXPECT_EQ(logger.EnabledLevels(), 0u);
    for (const int level : {-1, 0, 5, 6, 99, 100})
        logger.Log(level, "F", L"text");
    EXPECT_FALSE(logger.IsDiagTimingOn());
}

TEST_F(Logger, RangeOfOneListener_IsKept)
{
    CLogger& logger = Add(L"Verbose", L"Error").Make();
    for (int level = -1; level <= 8; ++level)
        logger.Log(level, "F", L"x");
    EXPECT_THAT(m_lstWritten, ElementsAre(L"1:2:F:x", L"1:3:F:x", L"1:4:F:x", L"1:5:F:x"));
}

TEST_F(Logger, MaximumBelowError_StillLimitsTheListener)
{
    CLogger& logger = Add(L"TraceIn", L"Verbose").Make();
    for (int level = 0; level <= 6; ++level)
        logger.Log(level, "F", L"x");
    EXPECT_THAT(m_lstWritten, ElementsAre(L"1:0:F:x", L"1:1:F:x", L"1:2:F:x"));
}

TEST_F(Logger, SeveralListeners_GetTheirLevelsInOrder)
{
    CLogger& logger = Add(L"Error", L"Error").Add(L"Verbose", L"Warning").Add(L"Warning", L"Diag").Make();
    for (int level = 0; level <= 6; ++level)
        logger.Log(level, "F", L"x");
    EXPECT_THAT(m_lstWritten,
                ElementsAre(L"2:2:F:x", L"2:3:F:x", L"2:4:F:x", L"3:4:F:x", L"1:5:F:x", L"3:5:F:x", L"3:6:F:x"));
}

TEST_F(Logger, TenListeners_AllGetTheRecord)
{
    for (int i = 0; i < 10; ++i)
        Add(L"TraceIn", L"Diag");
    Make().Log(3, "F", L"x");
    EXPECT_EQ(m_lstWritten.size(), 10u);
}

TEST_F(Logger, EnabledLevels_SpanAllListeners)
{
    EXPECT_EQ(Add(L"Verbose", L"Verbose").Add(L"Error", L"Diag").Make().EnabledLevels(), 0b111'1100u);
}

TEST_F(Logger, MaximumBelowError_OverallMaximumStaysError)
{
    EXPECT_EQ(Add(L"TraceIn", L"TraceOut").Make().EnabledLevels(), 0b11'1111u);
}

TEST_F(Logger, MinimumNever_SilencesTheListener)
{
    CLogger& logger = Add(L"Never", L"Error").Make();
    EXPECT_EQ(logger.EnabledLevels(), 0u);
    for (int level = 0; level <= 99; ++level)
        logger.Log(level, "F", L"x");
    EXPECT_THAT(m_lstWritten, IsEmpty());
}

TEST_F(Logger, UnknownMaximum_LetsLevelsWithoutNamePass)
{
    CLogger& logger = Add(L"Error", L"everything").Make();
    EXPECT_EQ(logger.EnabledLevels(), 0xFFFFFFE0u);
    logger.Log(7, "F", L"x");
    logger.Log(99, "F", L"x");
    logger.Log(100, "F", L"x");
    EXPECT_THAT(m_lstWritten, ElementsAre(L"1:7:F:x", L"1:99:F:x"));
}

TEST_F(Logger, Format_IsFilledIn)
{
    Add(L"TraceIn", L"Diag").Make().Log(3, "F", L"%d %s %S %08X %p %%", -5, L"wide", "narrow", 0x80004005u, nullptr);
    EXPECT_EQ(LastMessage(), L"-5 wide narrow 80004005 0000000000000000 %");
}

TEST_F(Logger, NullOrEmptyFormat_GivesAnEmptyMessage)
{
    CLogger& logger = Add(L"TraceIn", L"Diag").Make();
    logger.Log(3, "F", nullptr);
    logger.Log(3, "F", L"");
    EXPECT_THAT(m_lstWritten, ElementsAre(L"1:3:F:", L"1:3:F:"));
}

TEST_F(Logger, NullFunctionName_CountsAsEmpty)
{
    Add(L"TraceIn", L"Diag").Make().Log(3, nullptr, L"x");
    EXPECT_THAT(m_lstWritten, ElementsAre(L"1:3::x"));
}

TEST_F(Logger, MessageOf511Characters_IsKeptWhole)
{
    const std::wstring text(511, L'x');
    Add(L"TraceIn", L"Diag").Make().Log(3, "F", L"%s", text.c_str());
    EXPECT_EQ(LastMessage(), text);
}

TEST_F(Logger, LongerMessages_AreCutAt511Characters)
{
    CLogger& logger = Add(L"TraceIn", L"Diag").Make();
    for (const std::size_t length : {512, 513, 600, 5000})
    {
        std::wstring text(length, L'x');
        text[510] = L'y';
        text[511] = L'z';
        logger.Log(3, "F", L"%s", text.c_str());
        EXPECT_EQ(LastMessage(), text.substr(0, 511)) << length;
    }
}

TEST_F(Logger, NullCharacterInTheMessage_EndsIt)
{
    Add(L"TraceIn", L"Diag").Make().Log(3, "F", L"a%cb", L'\0');
    EXPECT_EQ(LastMessage(), L"a");
}

TEST_F(Logger, LastError_Survives)
{
    m_lstListeners[0] = ListenerDouble::Make(L"Error", L"Error", [](const auto&) { SetLastError(ERROR_DISK_FULL); });
    CLogger& logger = Make();
    for (const DWORD error : {DWORD{0}, DWORD{ERROR_FILE_NOT_FOUND}, DWORD{0xE0001234}})
    {
        SetLastError(error);
        logger.Log(Level::Error, "F", L"%s", L"x");
        EXPECT_EQ(GetLastError(), error);
        logger.Log(Level::Verbose, "F", L"%s", L"x");
        EXPECT_EQ(GetLastError(), error);
    }
}

TEST_F(Logger, ThrowingListener_LosesTheRecordOnly)
{
    bool throws = true;
    m_lstListeners[0] = ListenerDouble::Make(L"Error", L"Error",
                                             [&](const COrvikLogListener::LogData& data)
                                             {
                                                 SetLastError(ERROR_DISK_FULL);
                                                 if (throws)
                                                     throw std::length_error("list<T> too long");
                                                 m_lstWritten.push_back(data.Message());
                                             });
    CLogger& logger = Make();
    SetLastError(ERROR_FILE_NOT_FOUND);
    logger.Log(Level::Error, "F", L"lost");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    throws = false;
    logger.Log(Level::Error, "F", L"kept");
    EXPECT_THAT(m_lstWritten, ElementsAre(L"kept"));
}

TEST_F(Logger, ThrowingListener_LeavesTheRecordToThoseBehindIt)
{
    m_lstListeners[m_nListeners++] =
        ListenerDouble::Make(L"Error", L"Error", [](const auto&) { throw std::length_error("list<T> too long"); });
    CLogger& logger = Add(L"Error", L"Error").Make();
    SetLastError(ERROR_FILE_NOT_FOUND);
    logger.Log(Level::Error, "F", L"x");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(m_lstWritten, ElementsAre(L"2:5:F:x"));
}

unsigned g_timesTaken;

void WINAPI CountedLocalTime(LPSYSTEMTIME time)
{
    ++g_timesTaken;
    *time = {};
}

TEST_F(Logger, RecordOutsideTheRange_TakesNoTime)
{
    CLogger& logger = Add(L"Warning", L"Error").Make();
    const Simulator::Redirection<decltype(GetLocalTime)> localTime("GetLocalTime", &CountedLocalTime);
    g_timesTaken = 0;
    for (const int level : {-1, 0, 1, 2, 3, 6, 7, 99})
        logger.Log(level, "F", L"x");
    EXPECT_EQ(g_timesTaken, 0u);
    logger.Log(Level::Warning, "F", L"x");
    EXPECT_EQ(g_timesTaken, 1u);
}

TEST_F(Logger, Listeners_DieWithTheLogger)
{
    const auto token = std::make_shared<int>(0);
    m_lstListeners[0] = ListenerDouble::Make(L"Error", L"Error", [token](const auto&) {});
    Make();
    EXPECT_EQ(token.use_count(), 2);
    m_pLogger.reset();
    EXPECT_EQ(token.use_count(), 1);
}
} // namespace

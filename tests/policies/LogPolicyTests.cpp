#include "shared/Logger.h"
#include "shared/LoggingPolicy.h"
#include "shared/LogLevel.h"
#include "shared/OrvikLogListenerFile.h"

#include "PolicyTable.h"
#include "tests/policies/LogPolicyTest.h"
#include "tests/shared/ListenerDouble.h"
#include "tests/shared/Outlets.h"

#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using Range = std::pair<int, int>;

int NumberOf(std::span<const NamedNumber> table, std::wstring_view name)
{
    for (const NamedNumber& row : table)
    {
        if (name == row.m_pName)
            return row.m_nNumber;
    }
    ADD_FAILURE() << "the table has no such name";
    return -1;
}

Range LevelsOfAListener()
{
    const ListenerDouble listener(LoggingPolicy(), ListenerKind::Debug, [](const auto&) {});
    return {listener.MinLevel(), listener.MaxLevel()};
}

// Where a record of level Error goes with that policy.
class LoggingTypePolicy : public LogPolicyTest
{
protected:
    std::set<std::string> Arrivals()
    {
        DeleteFileW(m_folder.LogPath().c_str());
        const auto logger = CLogger::Create(Level::Error, ListenerKind::Event);
        logger->Log(Level::Error, "F", L"x");
        const auto taken = m_outlets.Take();
        std::set<std::string> arrivals(taken.begin(), taken.end());
        if (Exists(m_folder.LogPath()))
            arrivals.insert("file");
        return arrivals;
    }

    static std::set<std::string> Expected(std::wstring_view choice)
    {
        static const std::pair<const wchar_t*, const char*> names[] = {
            {L"EVENT", "event"}, {L"FILE", "file"}, {L"DEBUG", "debug"}, {L"CONSOLE", "console"}};
        std::set<std::string> expected;
        for (std::size_t begin = 0; begin <= choice.size();)
        {
            const std::size_t end = std::min(choice.find(L';', begin), choice.size());
            for (const auto& [word, outlet] : names)
            {
                if (choice.substr(begin, end - begin) == word)
                    expected.insert(outlet);
            }
            begin = end + 1;
        }
        return expected;
    }

    Outlets m_outlets;
};

TEST_F(LoggingTypePolicy, EveryChoice_GoesWhereItsWordsSay)
{
    for (const TextData* row : RowsOf(g_choices, L"LoggingType"))
    {
        m_key.Text(row->m_pValue, row->m_pData);
        EXPECT_FALSE(Expected(row->m_pData).empty());
        EXPECT_EQ(Arrivals(), Expected(row->m_pData)) << testing::PrintToString(row->m_pData);
    }
}

TEST_F(LoggingTypePolicy, EveryOutletOfTheTable_IsAWordOfTheCode)
{
    for (const NamedNumber& row : g_outlets)
    {
        m_key.Text(L"LoggingType", row.m_pName);
        EXPECT_EQ(Arrivals(), Expected(row.m_pName)) << testing::PrintToString(row.m_pName);
    }
    EXPECT_EQ(NumberOf(g_outlets, L"EVENT"), static_cast<int>(ListenerKind::Event));
    EXPECT_EQ(NumberOf(g_outlets, L"DEBUG"), static_cast<int>(ListenerKind::Debug));
    EXPECT_EQ(NumberOf(g_outlets, L"FILE"), static_cast<int>(ListenerKind::File));
    EXPECT_EQ(NumberOf(g_outlets, L"CONSOLE"), static_cast<int>(ListenerKind::Console));
}

TEST_F(LoggingTypePolicy, NoData_IsTheDefault)
{
    ASSERT_EQ(RowsOf(g_choiceDefaults, L"LoggingType").size(), 1u);
    EXPECT_EQ(Arrivals(), Expected(RowsOf(g_choiceDefaults, L"LoggingType").front()->m_pData));
}

class LogLevelPolicy : public LogPolicyTest
{
};

TEST_F(LogLevelPolicy, EveryChoice_IsTheLevelOfTheTable)
{
    for (const TextData* row : RowsOf(g_choices, L"MinLogLevel"))
    {
        m_key.Text(row->m_pValue, row->m_pData);
        EXPECT_EQ(LevelsOfAListener(), Range(NumberOf(g_levels, row->m_pData), Level::Error));
    }
    m_key.Remove(L"MinLogLevel");
    for (const TextData* row : RowsOf(g_choices, L"MaxLogLevel"))
    {
        m_key.Text(row->m_pValue, row->m_pData);
        EXPECT_EQ(LevelsOfAListener(), Range(Level::Error, NumberOf(g_levels, row->m_pData)));
    }
}

TEST_F(LogLevelPolicy, EveryLevelOfTheCode_StandsInTheTableUnderItsName)
{
    for (int level = Level::TraceIn; LevelName(level) != L"Undefined"; ++level)
        EXPECT_EQ(NumberOf(g_levels, LevelName(level)), level);
    for (const NamedNumber& row : g_levels)
        EXPECT_EQ(LevelFromName(row.m_pName), row.m_nNumber) << testing::PrintToString(row.m_pName);
    EXPECT_EQ(std::size(g_levels), 8u);
}

TEST_F(LogLevelPolicy, EveryLevelOfTheTable_IsALowestLevelAndAllButNeverAHighestOne)
{
    EXPECT_EQ(RowsOf(g_choices, L"MinLogLevel").size(), std::size(g_levels));
    EXPECT_EQ(RowsOf(g_choices, L"MaxLogLevel").size(), std::size(g_levels) - 1);
}

TEST_F(LogLevelPolicy, NoData_IsTheDefault)
{
    ASSERT_EQ(RowsOf(g_choiceDefaults, L"MinLogLevel").size(), 1u);
    ASSERT_EQ(RowsOf(g_choiceDefaults, L"MaxLogLevel").size(), 1u);
    EXPECT_EQ(LevelsOfAListener(),
              Range(NumberOf(g_levels, RowsOf(g_choiceDefaults, L"MinLogLevel").front()->m_pData),
                    NumberOf(g_levels, RowsOf(g_choiceDefaults, L"MaxLogLevel").front()->m_pData)));
}

class QueuedWritesPolicy : public LogPolicyTest
{
protected:
    static bool IsQueued(bool whatIsAsked)
    {
        const COrvikLogListenerFile listener(whatIsAsked, Level::Error, LoggingPolicy());
        return listener.GetType() == ListenerKind::FileQueued;
    }
};

TEST_F(QueuedWritesPolicy, EnabledAndDisabledData_AreOnAndOff)
{
    for (const NumberSwitch& row : g_numberSwitches)
    {
        m_key.Number(row.m_pValue, row.m_dwOn);
        EXPECT_TRUE(IsQueued(false));
        m_key.Number(row.m_pValue, row.m_dwOff);
        EXPECT_FALSE(IsQueued(true));
    }
}

TEST_F(QueuedWritesPolicy, NoData_IsTheDefault)
{
    // The word FILE chooses the listener that writes at once.
    EXPECT_EQ(IsQueued(false), g_numberSwitches[0].m_bDefault);
}

TEST_F(QueuedWritesPolicy, Table_HasNoOtherSwitchWithANumber)
{
    ASSERT_EQ(std::size(g_numberSwitches), 1u);
    EXPECT_STREQ(g_numberSwitches[0].m_pValue, L"QueuedWrites");
}
} // namespace

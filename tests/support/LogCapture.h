#pragma once

#include "shared/LogLevel.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace TestSupport
{
// One record that the logger of the process wrote, taken apart again.
struct LogRecord
{
    int m_nLevel;
    std::string m_strFunction;
    std::wstring m_strMessage;
    DWORD m_dwThreadId;
    std::wstring m_strLine; // as written
};
std::ostream& operator<<(std::ostream& out, const LogRecord& record);

// Every record since the test began or ClearLog, in order of writing. Levels TraceIn to Error: a Diag record never
// reaches the event log, where these come from.
[[nodiscard]] std::vector<LogRecord> LogRecords();
void ClearLog();

// What a test of an exact sequence compares: "Verbose|N::C::F|text" for each record.
[[nodiscard]] std::vector<std::wstring> LogLines();
// The same without TraceIn and TraceOut records.
[[nodiscard]] std::vector<std::wstring> OperationalLines();
// "Verbose|text" for each record of one function.
[[nodiscard]] std::vector<std::wstring> LogLines(std::string_view function);

[[nodiscard]] std::size_t LogCount(int level, std::string_view function, std::wstring_view message);

// EXPECT_TRUE(Logged(Level::Verbose, "N::C::F", L"text")); a failure prints the whole log.
[[nodiscard]] testing::AssertionResult Logged(int level, std::string_view function, std::wstring_view message);
[[nodiscard]] testing::AssertionResult NotLogged(int level, std::string_view function, std::wstring_view message);
[[nodiscard]] testing::AssertionResult NothingLogged();

// EXPECT_THAT(LogRecords(), Contains(IsRecord(Level::Error, "N::C::F", StartsWith(L"Invalid Command"))));
MATCHER_P3(IsRecord, level, function, message, "")
{
    return arg.m_nLevel == level && arg.m_strFunction == function &&
           testing::ExplainMatchResult(message, arg.m_strMessage, result_listener);
}
} // namespace TestSupport

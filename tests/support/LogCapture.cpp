#include "tests/support/LogCapture.h"

#include "shared/ModuleName.h"
#include "tests/support/EventLogCapture.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace TestSupport
{
namespace
{
using Orvik::Shared::LevelName;

std::string Narrow(std::wstring_view text)
{
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(), size, nullptr, nullptr);
    return narrow;
}

std::wstring Widen(std::string_view text)
{
    return {text.begin(), text.end()};
}

// Takes "time|thread|level|function|message" apart; the message may hold bars.
LogRecord Parse(const ReportedEvent& event)
{
    LogRecord record{static_cast<int>(event.m_dwEventId), {}, {}, 0, event.m_lstStrings.at(0)};
    std::array<std::wstring_view, 4> fields;
    std::wstring_view rest = record.m_strLine;
    for (std::wstring_view& field : fields)
    {
        const std::size_t bar = rest.find(L'|');
        field = rest.substr(0, bar);
        rest.remove_prefix(std::min(rest.size(), field.size() + 1));
    }
    record.m_dwThreadId = std::stoul(std::wstring(fields[1]), nullptr, 16);
    record.m_strFunction = Narrow(fields[3]);
    record.m_strMessage = rest;
    return record;
}

std::wstring LineOf(const LogRecord& record)
{
    return std::wstring(LevelName(record.m_nLevel)) + L"|" + Widen(record.m_strFunction) + L"|" + record.m_strMessage;
}

std::string WholeLog()
{
    std::string text;
    for (const LogRecord& record : LogRecords())
        text += "\n  " + Narrow(LineOf(record));
    return text.empty() ? "\nNothing was logged." : "\nThe log is:" + text;
}

std::string Describe(int level, std::string_view function, std::wstring_view message)
{
    return Narrow(LineOf({level, std::string(function), std::wstring(message), 0, {}}));
}
} // namespace

std::ostream& operator<<(std::ostream& out, const LogRecord& record)
{
    return out << Narrow(LineOf(record));
}

std::vector<LogRecord> LogRecords()
{
    const std::wstring source = Orvik::Shared::ModuleBaseName();
    std::vector<LogRecord> records;
    for (const ReportedEvent& event : EventLogCapture::Events())
    {
        if (event.m_strSource == source)
            records.push_back(Parse(event));
    }
    return records;
}

void ClearLog()
{
    EventLogCapture::Clear();
}

std::vector<std::wstring> LogLines()
{
    std::vector<std::wstring> lines;
    for (const LogRecord& record : LogRecords())
        lines.push_back(LineOf(record));
    return lines;
}

std::vector<std::wstring> OperationalLines()
{
    std::vector<std::wstring> lines;
    for (const LogRecord& record : LogRecords())
    {
        if (record.m_nLevel > Orvik::Shared::Level::TraceOut)
            lines.push_back(LineOf(record));
    }
    return lines;
}

std::vector<std::wstring> LogLines(std::string_view function)
{
    std::vector<std::wstring> lines;
    for (const LogRecord& record : LogRecords())
    {
        if (record.m_strFunction == function)
            lines.push_back(std::wstring(LevelName(record.m_nLevel)) + L"|" + record.m_strMessage);
    }
    return lines;
}

std::size_t LogCount(int level, std::string_view function, std::wstring_view message)
{
    const std::vector<LogRecord> records = LogRecords();
    return static_cast<std::size_t>(std::count_if(
        records.begin(), records.end(), [&](const LogRecord& record)
        { return record.m_nLevel == level && record.m_strFunction == function && record.m_strMessage == message; }));
}

testing::AssertionResult Logged(int level, std::string_view function, std::wstring_view message)
{
    if (LogCount(level, function, message) != 0)
        return testing::AssertionSuccess() << Describe(level, function, message) << " was logged." << WholeLog();
    return testing::AssertionFailure() << Describe(level, function, message) << " was not logged." << WholeLog();
}

testing::AssertionResult NotLogged(int level, std::string_view function, std::wstring_view message)
{
    if (LogCount(level, function, message) == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << Describe(level, function, message) << " was logged." << WholeLog();
}

testing::AssertionResult NothingLogged()
{
    if (LogRecords().empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "Something was logged." << WholeLog();
}
} // namespace TestSupport

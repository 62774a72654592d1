#include "simulator/console/Timeline.h"

#include "simulator/console/DialogLine.h"
#include "simulator/console/EventRecords.h"
#include "simulator/console/LogLine.h"

#include <cstdio>

namespace Simulator
{
namespace
{
struct Line
{
    std::string m_strWho;
    std::string m_strWhat;
};

std::string Quoted(const std::string& text)
{
    return "\"" + text + "\"";
}

std::string ToastTexts(const nlohmann::json& details)
{
    std::string texts;
    for (const nlohmann::json& text : details.value("texts", nlohmann::json::array()))
    {
        if (text.is_string() && !text.get<std::string>().empty())
            texts += (texts.empty() ? "" : " / ") + Quoted(text);
    }
    return texts;
}

std::optional<Line> ToastLine(const Entry& entry)
{
    const std::string toast = "toast " + std::to_string(entry.m_details.value("number", 0));
    if (entry.m_strSubject == "shown")
        return Line{"toast", toast + " appears: " + ToastTexts(entry.m_details)};
    if (entry.m_strSubject == "clicked")
        return Line{"user", "clicks " + toast};
    if (entry.m_strSubject == "dismissed")
        return Line{"user", "dismisses " + toast};
    if (entry.m_strSubject == "timed-out")
        return Line{"windows", toast + " times out"};
    if (entry.m_strSubject == "failed")
        return Line{"windows", toast + " fails with " + entry.m_details.value("error", "")};
    return std::nullopt;
}

Line ProgramLine(const Entry& entry)
{
    const int result = entry.m_details.value("result", 0);
    if (result > 32)
        return {"agent", "starts " + entry.m_strSubject};
    return {"agent", "tries to start " + entry.m_strSubject + ", which fails with " + std::to_string(result)};
}

std::optional<Line> AgentLine(const Entry& entry)
{
    if (entry.m_strSubject == "ready")
        return Line{"agent", "is ready and waits for events"};
    return std::nullopt;
}

std::optional<Line> CallLine(const Entry& entry)
{
    if (entry.m_details.contains("planned-failure"))
    {
        char code[16] = {};
        (void)std::snprintf(code, sizeof(code), "0x%08X", entry.m_details["planned-failure"].get<unsigned>());
        return Line{"windows", "lets " + entry.m_strSubject + " fail with " + code};
    }
    if (entry.m_strSubject == "IPlixCommand::Execute" || entry.m_strSubject == "IPlixCommand::ExecuteWithInput")
        return Line{"agent", "asks the platform for " + Quoted(entry.m_details.value("command", ""))};
    if (entry.m_strSubject == "IWbemServices::ExecNotificationQueryAsync")
        return Line{"agent", "subscribes to events: " + entry.m_details.value("query", "")};
    if (entry.m_strSubject == "CloseEventLog")
        return Line{"agent",
                    "has read the event log: " + std::to_string(entry.m_details.value("records", 0u)) + " records"};
    return std::nullopt;
}

std::optional<Line> RecordLine(const Entry& entry, bool showLog)
{
    if (const auto line = ReadLogLine(entry))
    {
        if (!showLog)
            return std::nullopt;
        return Line{"log", line->m_strLevel + " " + line->m_strFunction + ": " + line->m_strMessage};
    }
    const auto record = RecordOf(entry);
    if (!record)
        return std::nullopt;
    return Line{"eventlog", "new record of " + Quoted(record->m_strSource) + ": " + EventTypeName(record->m_wType) +
                                " " + std::to_string(record->m_dwEventId) + ", " + Quoted(TextInOneLine(*record))};
}

Line RefusalLine(const Entry& entry)
{
    const unsigned error = entry.m_details.value("error", 0u);
    return {"eventlog", "takes no record of " + Quoted(entry.m_strSubject) + ": error " + std::to_string(error) +
                            (error == ERROR_LOG_FILE_FULL ? ", it is full" : "")};
}

std::optional<Line> LineOf(const Entry& entry, bool showLog)
{
    if (entry.m_strKind == "console")
        return Line{entry.m_strSubject, entry.m_details.value("text", "")};
    if (entry.m_strKind == "toast")
        return ToastLine(entry);
    if (const auto line = ReadDialogLine(entry))
        return Line{line->m_strWho, line->m_strWhat};
    if (entry.m_strKind == "program")
        return ProgramLine(entry);
    if (entry.m_strKind == "agent")
        return AgentLine(entry);
    if (entry.m_strKind == "call")
        return CallLine(entry);
    if (entry.m_strKind == "clock")
        return Line{"agent", "waits " + std::to_string(entry.m_details.value("milliseconds", 0u)) + " ms (shortened)"};
    if (entry.m_strKind == "event-log")
        return RecordLine(entry, showLog);
    if (entry.m_strKind == "event-log-refusal")
        return RefusalLine(entry);
    return std::nullopt;
}
} // namespace

void Timeline::Show(const Entry& entry) const
{
    const std::optional<Line> line = LineOf(entry, m_bShowLog);
    if (!line)
        return;
    // A remark of the scenario stands alone.
    if (line->m_strWho.empty())
        std::printf("\n  %s\n", line->m_strWhat.c_str());
    else
        std::printf("  %7.3f s  %-8s  %s\n", entry.m_seconds, line->m_strWho.c_str(), line->m_strWhat.c_str());
    (void)std::fflush(stdout);
}

void Timeline::Print(const std::string& text)
{
    std::printf("%s\n", text.c_str());
    (void)std::fflush(stdout);
}
} // namespace Simulator

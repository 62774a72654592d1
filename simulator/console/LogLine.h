#pragma once

#include "simulator/console/EntryLog.h"

namespace Simulator
{
// A record of the agent's diagnostic log, taken apart again: date and time|thread|level|function|message.
struct LogLine
{
    std::string m_strLevel; // "Verbose"
    std::string m_strFunction;
    std::string m_strMessage;
};

// Nothing when the entry is no diagnostic record in the event log.
[[nodiscard]] std::optional<LogLine> ReadLogLine(const Entry& entry);
} // namespace Simulator

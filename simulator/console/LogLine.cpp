#include "simulator/console/LogLine.h"

#include "simulator/console/EventRecords.h"

#include <array>

namespace Simulator
{
std::optional<LogLine> ReadLogLine(const Entry& entry)
{
    if (entry.m_strKind != "event-log" || entry.m_strSubject != DiagnosticSource)
        return std::nullopt;
    const nlohmann::json strings = entry.m_details.value("strings", nlohmann::json::array());
    if (strings.size() != 1 || !strings[0].is_string())
        return std::nullopt;

    const std::string line = strings[0];
    std::array<std::string, 4> fields; // time, thread, level, function; the rest is the message, which may hold bars
    std::size_t begin = 0;
    for (std::string& field : fields)
    {
        const std::size_t bar = line.find('|', begin);
        if (bar == std::string::npos)
            return std::nullopt;
        field = line.substr(begin, bar - begin);
        begin = bar + 1;
    }
    std::string& level = fields[2];
    level.erase(level.find_last_not_of(' ') + 1);
    return LogLine{level, fields[3], line.substr(begin)};
}
} // namespace Simulator

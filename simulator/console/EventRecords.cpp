#include "simulator/console/EventRecords.h"

#include <cstdio>
#include <ctime>
#include <stdexcept>

namespace Simulator
{
namespace
{
std::string TimeText(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    const std::tm* const parts = std::gmtime(&time);
    char text[16] = {};
    if (parts != nullptr)
        static_cast<void>(std::strftime(text, sizeof(text), "%H:%M:%S", parts));
    return text;
}

std::string SourceText(const EventLogRecord& record)
{
    return record.m_strRaw.empty() ? record.m_strSource : "(damaged)";
}

// Each line break becomes " / ".
void AppendInOneLine(std::string& line, const std::string& text)
{
    for (std::size_t begin = 0; begin <= text.size();)
    {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        if (end != begin)
            line.append(line.empty() ? "" : " / ").append(text, begin, end - begin);
        begin = end + 1;
    }
}

std::string DamageText(const EventLogRecord& record)
{
    const nlohmann::json json = ToJson(record);
    return json.contains("damage") ? " (damaged: " + json.at("damage").dump() + ")" : "";
}

std::string Row(std::size_t number, const EventLogRecord& record)
{
    char columns[128] = {};
    static_cast<void>(std::snprintf(columns, sizeof(columns), "    %6zu  %8s  %-18.30s  %-11.15s  %10u  ", number,
                                    TimeText(record.m_nTime).c_str(), SourceText(record).c_str(),
                                    EventTypeName(record.m_wType).c_str(), static_cast<unsigned>(record.m_dwEventId)));
    return columns + TextInOneLine(record) + DamageText(record);
}
} // namespace

std::optional<EventLogRecord> RecordOf(const Entry& entry)
{
    if (entry.m_strKind != "event-log")
        return std::nullopt;
    try
    {
        return RecordFromJson(entry.m_details);
    }
    catch (const std::invalid_argument&)
    {
        return std::nullopt;
    }
}

std::string TextInOneLine(const EventLogRecord& record)
{
    if (!record.m_strRaw.empty())
        return std::to_string(record.m_strRaw.size() / 2) + " bytes";
    std::string line;
    for (const std::string& text : record.m_lstStrings)
        AppendInOneLine(line, text);
    return line;
}

std::string RecordTable(const std::vector<EventLogRecord>& records)
{
    if (records.empty())
        return "    no records";
    std::string table = "    number      time  source              type           event id  text";
    for (std::size_t i = 0; i < records.size(); ++i)
        table += "\n" + Row(i + 1, records[i]);
    return table;
}

void RecordsOfSource::Update()
{
    m_lines.Update();
    for (; m_nSeen < m_lines.Count(); ++m_nSeen)
    {
        std::optional<EventLogRecord> record = m_lines.At(m_nSeen);
        if (record && Includes(*record))
            m_lstRecords.push_back(*std::move(record));
    }
}

bool RecordsOfSource::Includes(const EventLogRecord& record) const
{
    return m_strSource.empty() ? record.m_strSource != DiagnosticSource : record.m_strSource == m_strSource;
}
} // namespace Simulator

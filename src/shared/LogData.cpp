#include "shared/LogData.h"

#include "shared/RecordPrefix.h"

namespace Orvik::Shared
{
namespace
{
// Function names are plain identifiers: each byte is its own character.
void AppendWidened(std::wstring& text, const std::string& narrow)
{
    for (const char c : narrow)
        text.push_back(static_cast<unsigned char>(c));
}
} // namespace

COrvikLogListener::LogData::LogData(int level, const char* functionName, const wchar_t* message)
    : m_strFunctionName(functionName != nullptr ? functionName : ""), m_strMessage(message != nullptr ? message : L""),
      m_nLevel(level), m_dwThreadId(GetCurrentThreadId())
{
    GetLocalTime(&m_time);
}

const std::wstring& COrvikLogListener::LogData::LevelName() const
{
    if (m_strLevelName.empty())
        m_strLevelName = Shared::LevelName(m_nLevel);
    return m_strLevelName;
}

const std::wstring& COrvikLogListener::LogData::GetLine() const
{
    if (m_strLine.empty())
    {
        wchar_t prefix[RecordPrefixCapacity];
        const std::size_t length = WriteRecordPrefix(prefix, m_time, m_dwThreadId, LevelName());
        m_strLine.reserve(length + m_strFunctionName.size() + m_strMessage.size() + 1);
        m_strLine.assign(prefix, length);
        AppendWidened(m_strLine, m_strFunctionName);
        m_strLine.push_back(L'|');
        m_strLine.append(m_strMessage);
    }
    return m_strLine;
}

std::wstring COrvikLogListener::LogData::ShortLine() const
{
    std::wstring line;
    line.reserve(m_strFunctionName.size() + m_strMessage.size() + 5);
    AppendWidened(line, m_strFunctionName);
    line.append(L" : ").append(m_strMessage).append(L"\r\n");
    return line;
}
} // namespace Orvik::Shared

#pragma once

#include "shared/OrvikLogListener.h"

#include <windows.h>

#include <string>

namespace Orvik::Shared
{
class CLogDataList;

// One record on its way to the listeners. Belongs to one thread at a time; a copy is complete.
class COrvikLogListener::LogData
{
public:
    // Takes the local time and the id of the calling thread. A null name or message counts as empty.
    LogData(int level, const char* functionName, const wchar_t* message);
    LogData(const LogData&) = default;
    LogData& operator=(const LogData&) = default;
    virtual ~LogData() = default;

    [[nodiscard]] int Level() const noexcept { return m_nLevel; }
    [[nodiscard]] const std::string& FunctionName() const noexcept { return m_strFunctionName; }
    [[nodiscard]] const std::wstring& Message() const noexcept { return m_strMessage; }
    [[nodiscard]] const SYSTEMTIME& Time() const noexcept { return m_time; }
    [[nodiscard]] DWORD ThreadId() const noexcept { return m_dwThreadId; }

    // Made on first use and kept.
    [[nodiscard]] const std::wstring& LevelName() const;

    // "2024/03/05 14:07:09.042|00001A2C|Information|Function|message", made on first use and kept.
    [[nodiscard]] const std::wstring& GetLine() const;

    // "Function : message" and a line end: the short form for people who watch.
    [[nodiscard]] std::wstring ShortLine() const;

private:
    friend class CLogDataList; // packs and unpacks them

    LogData(int level, const SYSTEMTIME& time, DWORD threadId) noexcept
        : m_nLevel(level), m_time(time), m_dwThreadId(threadId)
    {
    }

    std::string m_strFunctionName;
    std::wstring m_strMessage;
    int m_nLevel;
    SYSTEMTIME m_time;
    DWORD m_dwThreadId;
    mutable std::wstring m_strLevelName;
    mutable std::wstring m_strLine;
};
} // namespace Orvik::Shared

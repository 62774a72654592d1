#pragma once

#include "shared/LogLevel.h"

namespace Orvik::Shared
{
class LoggingPolicy;

// Kinds of listener: bits of the logging-type mask, and what GetType answers.
namespace ListenerKind
{
inline constexpr unsigned Event = 1;
inline constexpr unsigned Debug = 2;
inline constexpr unsigned FileQueued = 4;
inline constexpr unsigned File = 8;
inline constexpr unsigned Console = 16;
} // namespace ListenerKind

// Whether a listener takes its range of levels from policy.
enum class LevelPolicy : unsigned char
{
    Read,
    Ignore
};

// One destination of log records. Its range of levels is fixed when it is made; records come from any thread.
class COrvikLogListener
{
public:
    class LogData;

    COrvikLogListener(const COrvikLogListener&) = delete;
    COrvikLogListener& operator=(const COrvikLogListener&) = delete;
    virtual ~COrvikLogListener() = default;

    // The logger calls it for records within the range only.
    virtual void Write(const LogData& data) = 0;
    // A number of ListenerKind.
    [[nodiscard]] virtual unsigned GetType() const = 0;

    [[nodiscard]] int MinLevel() const noexcept { return m_nMinLevel; }
    [[nodiscard]] int MaxLevel() const noexcept { return m_nMaxLevel; }

protected:
    // The range is defaultMinLevel to Level::Error where policy gives none. minLevelName: the policy value that gives
    // the minimum.
    COrvikLogListener(int defaultMinLevel, const LoggingPolicy& policy, LevelPolicy levelPolicy = LevelPolicy::Read,
                      const wchar_t* minLevelName = L"MinLogLevel");

private:
    void ReadRange(const LoggingPolicy& policy, const wchar_t* minLevelName);

    int m_nMinLevel;
    int m_nMaxLevel = Level::Error;
    LevelPolicy m_levelPolicy;
};
} // namespace Orvik::Shared

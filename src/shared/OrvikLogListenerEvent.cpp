#include "shared/OrvikLogListenerEvent.h"

#include "shared/LogData.h"
#include "shared/ModuleName.h"

namespace Orvik::Shared
{
namespace
{
WORD EventType(int level) noexcept
{
    if (level == Level::Warning)
        return EVENTLOG_WARNING_TYPE;
    return level == Level::Error ? EVENTLOG_ERROR_TYPE : EVENTLOG_INFORMATION_TYPE;
}
} // namespace

COrvikLogListenerEvent::COrvikLogListenerEvent(int defaultMinLevel, const LoggingPolicy& policy)
    : COrvikLogListener(defaultMinLevel, policy),
      m_hEventSource(RegisterEventSourceW(nullptr, ModuleBaseName().c_str()))
{
}

void COrvikLogListenerEvent::Write(const LogData& data)
{
    // Whatever the maximum says: Diag records never reach the event log, which keeps timing noise from administrators.
    if (data.Level() < MinLevel() || data.Level() > Level::Error)
        return;
    const wchar_t* line = data.GetLine().c_str();
    ReportEventW(m_hEventSource.get(), EventType(data.Level()), 0, static_cast<DWORD>(data.Level()), nullptr, 1, 0,
                 &line, nullptr);
}
} // namespace Orvik::Shared

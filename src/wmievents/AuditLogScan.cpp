#include "wmievents/AuditLogScan.h"

#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"
#include "wmievents/AuditLogKeyMap.h"
#include "wmievents/EventLogRecords.h"
#include "wmievents/RecordBuffer.h"
#include "wmievents/VeritorEventLog.h"
#include "wmievents/WmiEventsState.h"

#include <new>

using Orvik::Shared::CriticalSectionLock;
using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueEventLog;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr DWORD g_dwFirstSize = 65536; // bytes; one buffer for the whole scan, that grows when a record does not fit

// One read. True when the log has more to give: records were read, or the buffer is to be tried again.
bool ReadRecords(const TraceScope& trace, HANDLE log, RecordBuffer& buffer)
{
    DWORD bytesRead = 0;
    DWORD bytesNeeded = 0;
    if (ReadEventLogW(log, EVENTLOG_SEQUENTIAL_READ | EVENTLOG_BACKWARDS_READ, 0, buffer.Data(), buffer.Size(),
                      &bytesRead, &bytesNeeded))
    {
        ForEachRecordOf(VeritorEventSourceName, buffer.First(bytesRead), &CreateHashingTimeStamp);
        return bytesRead != 0;
    }
    const DWORD error = GetLastError();
    if (error == ERROR_INSUFFICIENT_BUFFER && bytesNeeded > buffer.Size())
    {
        // Tried again with the old buffer too: what takes the memory may give it back, or the record may leave the log.
        if (!buffer.Grow(bytesNeeded))
            trace.Information(L"Failed to reallocate the memory for the record buffer.");
        return true;
    }
    if (error != ERROR_HANDLE_EOF)
        trace.Information(L"ReadEventLog failed with %lu.\n", error);
    return false;
}

void LogKeys(const TraceScope& trace)
{
    if (!Orvik::Shared::IsLevelEnabled(Orvik::Shared::Level::Verbose))
        return;
    for (const auto& [key, value] : AuditLogKeyMap::Instance().Copy())
        trace.Verbose(L"Key: [%S]   Value:[%S]", key.c_str(), value.c_str());
}

void Scan(const TraceScope& trace)
{
    RecordBuffer buffer;
    UniqueEventLog log(OpenEventLogW(nullptr, VeritorEventSourceName));
    if (!log)
    {
        trace.Information(L"OpenEventLog failed with 0x%x.\n", GetLastError());
        return;
    }
    if (!buffer.Grow(g_dwFirstSize))
    {
        trace.Information(L"Failed to allocate the initial memory for the record buffer.");
        return;
    }
    while (ReadRecords(trace, log.get(), buffer))
    {
    }
    log.reset();
    buffer.Free();
    LogKeys(trace);
}
} // namespace

DWORD WINAPI ThreadProcCreateHashKeysForVeritorEventLogs(void* /*parameter*/)
{
    TraceScope trace(ORVIK_FUNCTION);
    const CriticalSectionLock lock(g_csScan);
    try
    {
        Scan(trace);
    }
    catch (const std::bad_alloc&)
    {
        trace.Error(L"There is no memory for the records of the event log.");
    }
    return static_cast<DWORD>(trace.Exit(0));
}
} // namespace Notifications::OrvikWmiEvents

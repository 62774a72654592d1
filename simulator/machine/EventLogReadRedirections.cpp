#include "simulator/machine/EventLogStore.h"
#include "simulator/machine/HandleTable.h"
#include "simulator/machine/LastError.h"
#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"

// How programs read the log. Windows looks up which log holds a source; here one log holds all.
namespace Simulator
{
namespace
{
struct OpenLog
{
    OpenLog(std::string source, std::unique_ptr<EventLogReader> reader)
        : m_strSource(std::move(source)), m_pReader(std::move(reader))
    {
    }

    const std::string m_strSource; // by which it was opened
    LiveObject m_alive{"event log"};
    std::mutex m_lock; // of what follows
    std::unique_ptr<EventLogReader> m_pReader;
    unsigned m_nRecords = 0; // that were read
};

HandleTable<OpenLog>& Logs()
{
    static auto& logs = *new HandleTable<OpenLog>;
    return logs;
}

std::string DescribeFlags(DWORD flags)
{
    const std::string text = (flags & EVENTLOG_SEEK_READ) != 0 ? "seek" : "sequential";
    return text + ((flags & EVENTLOG_BACKWARDS_READ) != 0 ? " backwards" : " forwards");
}

HANDLE WINAPI OpenEventLogWOfMachine(LPCWSTR server, LPCWSTR source)
{
    const DWORD lastError = GetLastError();
    const HRESULT hr = CallPlan::Instance().Enter("OpenEventLogW", DescribeArguments(server, source));
    const DWORD error = source == nullptr ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
    if (!AnswerWith(FAILED(hr) ? ErrorNumber(hr) : error, lastError))
        return nullptr;
    const HANDLE log = Logs().Add(std::make_shared<OpenLog>(Narrow(source), EventLogStore::Instance().Read()));
    SetLastError(lastError);
    return log;
}

BOOL WINAPI CloseEventLogOfMachine(HANDLE handle)
{
    const DWORD lastError = GetLastError();
    nlohmann::json details = nlohmann::json::object();
    if (const std::shared_ptr<OpenLog> log = Logs().Find(handle))
    {
        const std::lock_guard lock(log->m_lock);
        details = {{"source", log->m_strSource}, {"records", log->m_nRecords}};
    }
    if (const HRESULT hr = CallPlan::Instance().Enter("CloseEventLog", std::move(details)); FAILED(hr))
        return AnswerWith(ErrorNumber(hr), lastError);
    return AnswerWith(Logs().Remove(handle) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE, lastError);
}

// What the log answers while the plan lets it work; fact /event-log/buffer: bytes that it wants at least.
EventLogRead ReadLog(OpenLog& log, DWORD flags, DWORD recordNumber, void* buffer, DWORD size)
{
    const nlohmann::json wanted = Facts::Instance().Get("/event-log/buffer");
    if (wanted.is_number_integer() && size < wanted.get<DWORD>())
        return {.m_dwError = ERROR_INSUFFICIENT_BUFFER, .m_dwBytesNeeded = wanted.get<DWORD>()};
    const std::lock_guard lock(log.m_lock);
    const EventLogRead result = log.m_pReader->Read(flags, recordNumber, buffer, size);
    log.m_nRecords += result.m_nRecords;
    return result;
}

// A buffer that is too small by plan is half as large as it would have to be.
EventLogRead PlannedFailure(DWORD error, DWORD size)
{
    return {.m_dwError = error, .m_dwBytesNeeded = error == ERROR_INSUFFICIENT_BUFFER ? 2 * size : 0};
}

BOOL WINAPI ReadEventLogWOfMachine(HANDLE handle, DWORD flags, DWORD recordNumber, LPVOID buffer, DWORD size,
                                   DWORD* bytesRead, DWORD* bytesNeeded)
{
    const DWORD lastError = GetLastError();
    const std::shared_ptr<OpenLog> log = Logs().Find(handle);
    const HRESULT hr = CallPlan::Instance().Enter("ReadEventLogW", {{"source", log ? log->m_strSource : std::string()},
                                                                    {"flags", DescribeFlags(flags)},
                                                                    {"record", recordNumber},
                                                                    {"size", size}});
    if (bytesRead == nullptr || bytesNeeded == nullptr)
        return AnswerWith(ERROR_INVALID_PARAMETER, lastError);
    EventLogRead result{.m_dwError = ERROR_INVALID_HANDLE};
    if (FAILED(hr))
        result = PlannedFailure(ErrorNumber(hr), size);
    else if (log)
        result = ReadLog(*log, flags, recordNumber, buffer, size);
    *bytesRead = result.m_dwBytesRead;
    *bytesNeeded = result.m_dwBytesNeeded;
    return AnswerWith(result.m_dwError, lastError);
}
} // namespace

void RedirectEventLogReading(Redirections& redirections)
{
    redirections.Add("OpenEventLogW", &OpenEventLogWOfMachine);
    redirections.Add("CloseEventLog", &CloseEventLogOfMachine);
    redirections.Add("ReadEventLogW", &ReadEventLogWOfMachine);
}
} // namespace Simulator

#include "simulator/machine/EventLogStore.h"
#include "simulator/machine/HandleTable.h"
#include "simulator/machine/LastError.h"
#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"

// How programs write records. Windows refuses a string or data that are too long, from Vista on with this error; the
// lengths are those of its documentation.
namespace Simulator
{
namespace
{
constexpr std::size_t g_longestString = 31'839; // characters
constexpr DWORD g_dwMostData = 61'440;          // bytes
constexpr DWORD g_dwTooLong = RPC_S_INVALID_BOUND;

struct EventSource
{
    explicit EventSource(std::string name) : m_strName(std::move(name)) {}

    std::string m_strName;
    LiveObject m_alive{"event source"};
};

HandleTable<EventSource>& Sources()
{
    static auto& sources = *new HandleTable<EventSource>;
    return sources;
}

std::string NameOf(const std::shared_ptr<EventSource>& source)
{
    return source ? source->m_strName : std::string();
}

HANDLE WINAPI RegisterEventSourceWOfMachine(LPCWSTR server, LPCWSTR source)
{
    const DWORD lastError = GetLastError();
    const HRESULT hr = CallPlan::Instance().Enter("RegisterEventSourceW", DescribeArguments(server, source));
    const DWORD error = source == nullptr ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
    if (!AnswerWith(FAILED(hr) ? ErrorNumber(hr) : error, lastError))
        return nullptr;
    return Sources().Add(std::make_shared<EventSource>(Narrow(source)));
}

BOOL WINAPI DeregisterEventSourceOfMachine(HANDLE source)
{
    const DWORD lastError = GetLastError();
    const HRESULT hr =
        CallPlan::Instance().Enter("DeregisterEventSource", {{"source", NameOf(Sources().Find(source))}});
    if (FAILED(hr))
        return AnswerWith(ErrorNumber(hr), lastError);
    return AnswerWith(Sources().Remove(source) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE, lastError);
}

// Win32 error code.
DWORD ReadStrings(WORD count, const LPCWSTR* strings, std::vector<std::string>& texts)
{
    for (WORD i = 0; i < count; ++i)
    {
        if (strings == nullptr || strings[i] == nullptr)
            return ERROR_INVALID_PARAMETER;
        const std::wstring_view text = strings[i];
        if (text.size() > g_longestString)
            return g_dwTooLong;
        texts.push_back(Narrow(text));
    }
    return ERROR_SUCCESS;
}

// Win32 error code.
DWORD ReadData(DWORD size, const void* data, std::string& digits)
{
    if (size > g_dwMostData)
        return g_dwTooLong;
    if (size != 0 && data == nullptr)
        return ERROR_INVALID_PARAMETER;
    digits = ToHexadecimal(data, size);
    return ERROR_SUCCESS;
}

BOOL WINAPI ReportEventWOfMachine(HANDLE handle, WORD type, WORD category, DWORD eventId, PSID, WORD stringCount,
                                  DWORD dataSize, LPCWSTR* strings, LPVOID data)
{
    const DWORD lastError = GetLastError();
    const std::shared_ptr<EventSource> source = Sources().Find(handle);
    const HRESULT hr = CallPlan::Instance().Enter(
        "ReportEventW", {{"source", NameOf(source)}, {"type", EventTypeName(type)}, {"event-id", eventId}});
    if (FAILED(hr))
        return AnswerWith(ErrorNumber(hr), lastError);
    if (!source)
        return AnswerWith(ERROR_INVALID_HANDLE, lastError);
    EventLogRecord record;
    record.m_strSource = source->m_strName;
    record.m_wType = type;
    record.m_wCategory = category;
    record.m_dwEventId = eventId;
    DWORD error = ReadStrings(stringCount, strings, record.m_lstStrings);
    if (error == ERROR_SUCCESS)
        error = ReadData(dataSize, data, record.m_strData);
    if (error == ERROR_SUCCESS)
        error = EventLogStore::Instance().Append(std::move(record));
    if (error != ERROR_SUCCESS)
        Journal::Instance().Append("event-log-refusal", source->m_strName, {{"error", error}});
    return AnswerWith(error, lastError);
}
} // namespace

void RedirectEventLogFunctions(Redirections& redirections)
{
    redirections.Add("RegisterEventSourceW", &RegisterEventSourceWOfMachine);
    redirections.Add("DeregisterEventSource", &DeregisterEventSourceOfMachine);
    redirections.Add("ReportEventW", &ReportEventWOfMachine);
}
} // namespace Simulator

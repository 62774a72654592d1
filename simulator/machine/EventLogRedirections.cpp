#include "simulator/machine/EventLogStore.h"
#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"
#include "simulator/model/LiveObjects.h"

#include <map>
#include <memory>
#include <mutex>

namespace Simulator
{
namespace
{
// An event source that the agent registered; its address is the handle.
struct EventSource
{
    explicit EventSource(std::string name) : m_strName(std::move(name)) {}

    std::string m_strName;
    LiveObject m_alive{"event source"};
};

struct EventSources
{
    std::mutex m_lock;
    std::map<HANDLE, std::unique_ptr<EventSource>> m_mapSources;
};

EventSources& Sources()
{
    static EventSources& sources = *new EventSources;
    return sources;
}

bool Fails(HRESULT hr)
{
    if (FAILED(hr))
        SetLastError(ErrorNumber(hr));
    return FAILED(hr);
}

HANDLE WINAPI RegisterEventSourceWOfMachine(LPCWSTR server, LPCWSTR source)
{
    if (Fails(CallPlan::Instance().Enter("RegisterEventSourceW", DescribeArguments(server, source))))
        return nullptr;
    auto added = std::make_unique<EventSource>(Narrow(source));
    const HANDLE handle = added.get();
    const std::lock_guard lock(Sources().m_lock);
    Sources().m_mapSources[handle] = std::move(added);
    return handle;
}

BOOL WINAPI DeregisterEventSourceOfMachine(HANDLE source)
{
    if (Fails(CallPlan::Instance().Enter("DeregisterEventSource")))
        return FALSE;
    const std::lock_guard lock(Sources().m_lock);
    if (Sources().m_mapSources.erase(source) != 0)
        return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

std::string Hexadecimal(const void* data, DWORD size)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (DWORD i = 0; bytes != nullptr && i < size; ++i)
        text.append({digits[bytes[i] >> 4], digits[bytes[i] & 15]});
    return text;
}

BOOL WINAPI ReportEventWOfMachine(HANDLE source, WORD type, WORD category, DWORD eventId, PSID, WORD stringCount,
                                  DWORD dataSize, LPCWSTR* strings, LPVOID data)
{
    if (Fails(CallPlan::Instance().Enter("ReportEventW")))
        return FALSE;
    EventLogRecord record;
    {
        const std::lock_guard lock(Sources().m_lock);
        const auto found = Sources().m_mapSources.find(source);
        if (found == Sources().m_mapSources.end())
        {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        record.m_strSource = found->second->m_strName;
    }
    record.m_type = type;
    record.m_category = category;
    record.m_dwEventId = eventId;
    for (WORD i = 0; i < stringCount; ++i)
        record.m_lstStrings.push_back(Narrow(strings[i]));
    record.m_strData = Hexadecimal(data, dataSize);
    EventLogStore::Instance().Append(record);
    return TRUE;
}
} // namespace

void RedirectEventLogFunctions(Redirections& redirections)
{
    redirections.Add("RegisterEventSourceW", &RegisterEventSourceWOfMachine);
    redirections.Add("DeregisterEventSource", &DeregisterEventSourceOfMachine);
    redirections.Add("ReportEventW", &ReportEventWOfMachine);
}
} // namespace Simulator

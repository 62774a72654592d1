#include "tests/wmievents/HubProbe.h"

namespace Tests
{
std::vector<ProbedCall> HubProbe::Calls() const
{
    const std::lock_guard lock(m_lock);
    return m_lstCalls;
}

void HubProbe::OnPlain()
{
    Note({.m_strHandler = "plain"}, nullptr);
}

void HubProbe::OnBios(int eventId, VARIANT* eventData)
{
    Note({.m_strHandler = "bios", .m_nEventId = eventId}, eventData);
}

void HubProbe::OnPublic(const CStringW& eventClass, VARIANT* eventData)
{
    Note({.m_strHandler = "public", .m_strEventClass = eventClass}, eventData);
}

void HubProbe::Note(ProbedCall call, const VARIANT* eventData)
{
    call.m_dwThreadId = GetCurrentThreadId();
    if (eventData != nullptr)
    {
        call.m_bHasData = true;
        call.m_vt = eventData->vt;
        if (eventData->vt == VT_I4)
            call.m_nValue = eventData->lVal;
        else if (eventData->vt == VT_BSTR && eventData->bstrVal != nullptr)
            call.m_strValue = eventData->bstrVal;
    }
    {
        const std::lock_guard lock(m_lock);
        m_lstCalls.push_back(std::move(call));
    }
    if (m_onCall)
        m_onCall();
}
} // namespace Tests

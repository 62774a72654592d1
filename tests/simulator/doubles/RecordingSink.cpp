#include "tests/simulator/doubles/RecordingSink.h"

#include "simulator/doubles/JournalText.h"

#include <comdef.h>

namespace Simulator
{
namespace
{
long EventIdOf(IWbemClassObject* object)
{
    if (object == nullptr)
        return -1;
    _variant_t value;
    const HRESULT hr = object->Get(L"EventID", 0, &value, nullptr, nullptr);
    return SUCCEEDED(hr) && value.vt == VT_I4 ? value.lVal : -2;
}
} // namespace

HRESULT RecordingSink::QueryInterface(REFIID iid, void** object)
{
    if (iid != IID_IUnknown && iid != IID_IWbemObjectSink)
        return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
}

HRESULT RecordingSink::Indicate(LONG count, IWbemClassObject** objects)
{
    Delivery delivery{GetCurrentThreadId(), ApartmentText(), {}};
    for (LONG i = 0; i < count; ++i)
        delivery.m_lstEventIds.push_back(EventIdOf(objects[i]));
    {
        const std::lock_guard lock(m_lock);
        m_lstDeliveries.push_back(std::move(delivery));
    }
    return m_action();
}

HRESULT RecordingSink::SetStatus(LONG flags, HRESULT result, BSTR, IWbemClassObject*)
{
    const std::lock_guard lock(m_lock);
    m_lstStatuses.push_back(std::to_string(flags) + ":" + HResultText(result));
    return S_OK;
}

std::vector<RecordingSink::Delivery> RecordingSink::Deliveries() const
{
    const std::lock_guard lock(m_lock);
    return m_lstDeliveries;
}

std::vector<std::string> RecordingSink::Statuses() const
{
    const std::lock_guard lock(m_lock);
    return m_lstStatuses;
}

std::vector<long> RecordingSink::EventIds() const
{
    std::vector<long> ids;
    for (const Delivery& delivery : Deliveries())
        ids.insert(ids.end(), delivery.m_lstEventIds.begin(), delivery.m_lstEventIds.end());
    return ids;
}
} // namespace Simulator

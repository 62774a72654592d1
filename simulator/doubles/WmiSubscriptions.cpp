#include "simulator/doubles/WmiSubscriptions.h"

#include <utility>

namespace Simulator
{
std::shared_ptr<IWbemObjectSink> HoldSink(IWbemObjectSink* sink)
{
    sink->AddRef();
    return {sink, [](IWbemObjectSink* held) { held->Release(); }};
}

WmiSubscriptions& WmiSubscriptions::Instance()
{
    // Never freed: events may be raised until the process is gone.
    static WmiSubscriptions& subscriptions = *new WmiSubscriptions;
    return subscriptions;
}

void WmiSubscriptions::Add(WmiSubscription subscription)
{
    const std::lock_guard lock(m_lock);
    m_lstSubscriptions.push_back(std::move(subscription));
}

std::vector<WmiSubscription> WmiSubscriptions::Remove(const void* connection, IWbemObjectSink* sink)
{
    const std::lock_guard lock(m_lock);
    std::vector<WmiSubscription> kept;
    std::vector<WmiSubscription> removed;
    for (WmiSubscription& subscription : m_lstSubscriptions)
    {
        const bool isSink = sink == nullptr || subscription.m_spSink.get() == sink;
        (subscription.m_pConnection == connection && isSink ? removed : kept).push_back(std::move(subscription));
    }
    m_lstSubscriptions = std::move(kept);
    return removed;
}

std::vector<WmiSubscription> WmiSubscriptions::Snapshot() const
{
    const std::lock_guard lock(m_lock);
    return m_lstSubscriptions;
}
} // namespace Simulator

#include "simulator/doubles/WmiSubscriptions.h"

#include <algorithm>
#include <iterator>

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
    const auto goes = std::stable_partition(m_lstSubscriptions.begin(), m_lstSubscriptions.end(),
                                            [&](const WmiSubscription& subscription)
                                            {
                                                const bool isSink =
                                                    sink == nullptr || subscription.m_spSink.get() == sink;
                                                return subscription.m_pConnection != connection || !isSink;
                                            });
    std::vector<WmiSubscription> removed(std::make_move_iterator(goes),
                                         std::make_move_iterator(m_lstSubscriptions.end()));
    m_lstSubscriptions.erase(goes, m_lstSubscriptions.end());
    return removed;
}

std::vector<WmiSubscription> WmiSubscriptions::Snapshot() const
{
    const std::lock_guard lock(m_lock);
    return m_lstSubscriptions;
}
} // namespace Simulator

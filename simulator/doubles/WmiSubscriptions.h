#pragma once

#include "simulator/doubles/WmiQuery.h"

#include <windows.h>

#include <wbemcli.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Simulator
{
// One notification query that is running.
struct WmiSubscription
{
    const void* m_pConnection; // which IWbemServices made it
    std::string m_strNamespace;
    WmiQuery m_query;
    LONG m_nFlags;
    std::shared_ptr<IWbemObjectSink> m_spSink; // one reference of the sink, however many copies
};

// Takes one reference, given back with the last copy.
[[nodiscard]] std::shared_ptr<IWbemObjectSink> HoldSink(IWbemObjectSink* sink);

// The notification queries of all connections. One per process, any thread.
class WmiSubscriptions
{
public:
    static WmiSubscriptions& Instance();

    void Add(WmiSubscription subscription);
    // Takes the queries of that connection and sink out and gives them back, so that their references end with the
    // caller. A null sink means all of the connection.
    [[nodiscard]] std::vector<WmiSubscription> Remove(const void* connection, IWbemObjectSink* sink);
    // A copy that holds the sinks: a delivery may still be under way when a query is cancelled, as with WMI itself.
    [[nodiscard]] std::vector<WmiSubscription> Snapshot() const;

private:
    WmiSubscriptions() = default;

    mutable std::mutex m_lock;
    std::vector<WmiSubscription> m_lstSubscriptions;
};
} // namespace Simulator

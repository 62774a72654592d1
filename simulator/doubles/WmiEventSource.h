#pragma once

#include <windows.h>

#include <atomic>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Simulator
{
// What WMI hands to each subscription that it concerns in one Indicate.
struct WmiEventBatch
{
    std::string m_strClass;
    // The properties of each instance (values as in JsonVariant.h); a null makes a null entry of the array.
    std::vector<nlohmann::json> m_lstObjects;
    // What subscriptions are matched against; by default the number "EventID" of the first instance that has one.
    std::optional<long> m_nEventId = std::nullopt;
    std::string m_strNamespace = R"(root\wmi)";
};

// Indicate's results, one for each subscription that was reached, in the order of subscribing.
using DeliveryResults = std::vector<HRESULT>;

// A delivery on a thread of its own. Destroying it waits for its end.
class RunningDelivery
{
public:
    explicit RunningDelivery(WmiEventBatch batch);
    RunningDelivery(const RunningDelivery&) = delete;
    RunningDelivery& operator=(const RunningDelivery&) = delete;
    ~RunningDelivery();

    [[nodiscard]] bool IsDone() const noexcept { return m_bDone; }
    // Waits for the end.
    [[nodiscard]] DeliveryResults Results();

private:
    WmiEventBatch m_batch;
    DeliveryResults m_lstResults;
    std::atomic<bool> m_bDone = false;
    std::thread m_thread;
};

// Raises WMI events: every subscription of the namespace whose query matches gets them. Journal, kind "wmi": "raised"
// (class, event id, how many subscriptions) and for each of them "delivered" (Indicate's result "hr") when it has
// returned.
class WmiEventSource
{
public:
    // One instance, delivered on a thread such as COM makes for incoming calls; returns when all have been told.
    static DeliveryResults Raise(const std::string& className, const nlohmann::json& properties);
    static DeliveryResults Raise(const WmiEventBatch& batch);
    // The same on the calling thread.
    static DeliveryResults RaiseHere(const WmiEventBatch& batch);
    // The same batch many times from several threads at once.
    static DeliveryResults RaiseFromThreads(const WmiEventBatch& batch, unsigned threads, unsigned timesEach);
    // SetStatus for every subscription, from one such thread; returns its results.
    static DeliveryResults SendStatus(LONG flags, HRESULT result);

    [[nodiscard]] static std::size_t SubscriptionCount();
};
} // namespace Simulator

#include "simulator/doubles/WmiEventSource.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/JsonVariant.h"
#include "simulator/doubles/RealFunctions.h"
#include "simulator/doubles/WmiDelivery.h"
#include "simulator/doubles/WmiSubscriptions.h"
#include "simulator/model/Journal.h"

#include <mutex>

namespace Simulator
{
namespace
{
std::optional<long> EventIdOf(const WmiEventBatch& batch)
{
    if (batch.m_nEventId)
        return batch.m_nEventId;
    for (const nlohmann::json& object : batch.m_lstObjects)
    {
        VARIANT value{};
        if (!object.is_object() || !object.contains("EventID") || FAILED(VariantFromJson(object.at("EventID"), value)))
            continue;
        const nlohmann::json number = JsonFromVariant(value).value("value", nlohmann::json());
        RealFunctions::Instance().VariantClear(&value);
        if (number.is_number_integer())
            return number.get<long>();
    }
    return std::nullopt;
}

std::vector<WmiSubscription> Concerned(const WmiEventBatch& batch, std::optional<long> eventId)
{
    std::vector<WmiSubscription> concerned = WmiSubscriptions::Instance().Snapshot();
    std::erase_if(concerned,
                  [&](const WmiSubscription& subscription)
                  {
                      return subscription.m_strNamespace != batch.m_strNamespace ||
                             !subscription.m_query.Matches(batch.m_strClass, eventId);
                  });
    return concerned;
}

nlohmann::json OptionalNumber(std::optional<long> number)
{
    return number ? nlohmann::json(*number) : nlohmann::json();
}
} // namespace

RunningDelivery::RunningDelivery(WmiEventBatch batch)
    : m_batch(std::move(batch)), m_thread(StartComThread(
                                     [this]
                                     {
                                         m_lstResults = WmiEventSource::RaiseHere(m_batch);
                                         m_bDone = true;
                                     }))
{
}

RunningDelivery::~RunningDelivery()
{
    if (m_thread.joinable())
        m_thread.join();
}

DeliveryResults RunningDelivery::Results()
{
    if (m_thread.joinable())
        m_thread.join();
    return m_lstResults;
}

DeliveryResults WmiEventSource::Raise(const std::string& className, const nlohmann::json& properties)
{
    return Raise({.m_strClass = className, .m_lstObjects = {properties}});
}

DeliveryResults WmiEventSource::Raise(const WmiEventBatch& batch)
{
    return RunningDelivery(batch).Results();
}

DeliveryResults WmiEventSource::RaiseHere(const WmiEventBatch& batch)
{
    const std::optional<long> eventId = EventIdOf(batch);
    const std::vector<WmiSubscription> concerned = Concerned(batch, eventId);
    Journal::Instance().Append("wmi", "raised",
                               {{"class", batch.m_strClass},
                                {"event-id", OptionalNumber(eventId)},
                                {"objects", batch.m_lstObjects.size()},
                                {"subscriptions", concerned.size()}});
    DeliveryResults results;
    for (const WmiSubscription& subscription : concerned)
    {
        const HRESULT hr = Indicate(*subscription.m_spSink, batch.m_strClass, batch.m_lstObjects);
        Journal::Instance().Append(
            "wmi", "delivered",
            {{"class", batch.m_strClass}, {"event-id", OptionalNumber(eventId)}, {"hr", HResultText(hr)}});
        results.push_back(hr);
    }
    return results;
}

DeliveryResults WmiEventSource::RaiseFromThreads(const WmiEventBatch& batch, unsigned threads, unsigned timesEach)
{
    std::mutex lock;
    DeliveryResults all;
    std::vector<std::thread> running;
    for (unsigned i = 0; i != threads; ++i)
    {
        running.push_back(StartComThread(
            [&]
            {
                for (unsigned time = 0; time != timesEach; ++time)
                {
                    const DeliveryResults results = RaiseHere(batch);
                    const std::lock_guard guard(lock);
                    all.insert(all.end(), results.begin(), results.end());
                }
            }));
    }
    for (std::thread& thread : running)
        thread.join();
    return all;
}

DeliveryResults WmiEventSource::SendStatus(LONG flags, HRESULT result)
{
    DeliveryResults results;
    StartComThread(
        [&]
        {
            for (const WmiSubscription& subscription : WmiSubscriptions::Instance().Snapshot())
            {
                const HRESULT hr = subscription.m_spSink->SetStatus(flags, result, nullptr, nullptr);
                Journal::Instance().Append(
                    "wmi", "status", {{"flags", flags}, {"result", HResultText(result)}, {"hr", HResultText(hr)}});
                results.push_back(hr);
            }
        })
        .join();
    return results;
}

std::size_t WmiEventSource::SubscriptionCount()
{
    return WmiSubscriptions::Instance().Snapshot().size();
}
} // namespace Simulator

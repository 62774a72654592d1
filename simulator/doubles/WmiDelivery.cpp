#include "simulator/doubles/WmiDelivery.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/WbemClassObjectDouble.h"
#include "simulator/doubles/WmiStatus.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <mutex>

namespace Simulator
{
namespace
{
constexpr DWORD LaterMilliseconds = 20;

struct LateCalls
{
    std::mutex m_lock;
    std::vector<std::thread> m_lstThreads;
};

LateCalls& TheLateCalls()
{
    // Never freed: a thread that nobody waited for may run until the process is gone.
    static LateCalls& calls = *new LateCalls;
    return calls;
}

void SetCancelled(IWbemObjectSink& sink)
{
    const HRESULT hr = sink.SetStatus(WBEM_STATUS_COMPLETE, Status(WBEM_E_CALL_CANCELLED), nullptr, nullptr);
    Journal::Instance().Append("wmi", "status",
                               {{"result", HResultText(Status(WBEM_E_CALL_CANCELLED))}, {"hr", HResultText(hr)}});
}
} // namespace

std::thread StartComThread(std::function<void()> work)
{
    return std::thread(std::move(work));
}

HRESULT Indicate(IWbemObjectSink& sink, std::string_view className, const std::vector<nlohmann::json>& objects)
{
    std::vector<IWbemClassObject*> instances;
    instances.reserve(objects.size());
    for (const nlohmann::json& properties : objects)
        instances.push_back(properties.is_null() ? nullptr : new WbemClassObjectDouble(className, properties));
    const HRESULT hr = sink.Indicate(static_cast<LONG>(instances.size()), instances.data());
    for (IWbemClassObject* instance : instances)
    {
        if (instance != nullptr)
            instance->Release();
    }
    return hr;
}

void TellCancelled(std::shared_ptr<IWbemObjectSink> spSink)
{
    const nlohmann::json when = Facts::Instance().Get("/wmi/status-after-cancel");
    if (when == "never")
        return;
    if (when != "later")
    {
        StartComThread([&] { SetCancelled(*spSink); }).join();
        return;
    }
    LateCalls& calls = TheLateCalls();
    const std::lock_guard lock(calls.m_lock);
    calls.m_lstThreads.push_back(StartComThread(
        [spHeld = std::move(spSink)]
        {
            Sleep(LaterMilliseconds);
            SetCancelled(*spHeld);
        }));
}

void FinishLateStatusCalls()
{
    LateCalls& calls = TheLateCalls();
    std::vector<std::thread> threads;
    {
        const std::lock_guard lock(calls.m_lock);
        threads.swap(calls.m_lstThreads);
    }
    for (std::thread& thread : threads)
        thread.join();
}
} // namespace Simulator

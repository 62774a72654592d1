#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

namespace Simulator
{
// Runs on a thread such as COM makes for incoming calls: nothing initialises COM on it, it belongs to the process's
// multithreaded apartment for as long as there is one.
[[nodiscard]] std::thread StartComThread(std::function<void()> work);

// One Indicate with new objects of that class; a null in place of an object's properties makes a null entry.
HRESULT Indicate(IWbemObjectSink& sink, std::string_view className, const std::vector<nlohmann::json>& objects);

// WMI's last words to the sink of a cancelled query, as the fact "/wmi/status-after-cancel" has it
// (WbemServicesDouble.h).
void TellCancelled(std::shared_ptr<IWbemObjectSink> spSink);
// Waits for those that were to come later.
void FinishLateStatusCalls();
} // namespace Simulator

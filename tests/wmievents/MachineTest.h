#pragma once

#include "simulator/doubles/ComRedirections.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"
#include "simulator/toasts/ToastRedirections.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/HubProbe.h"

#include <wbemcli.h>
#include <windows.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Tests
{
// WMI's codes are enumerators.
constexpr HRESULT Hr(WBEMSTATUS status)
{
    return static_cast<HRESULT>(status);
}

// A test in a simulated machine that has everything the agent asks for: commands, notification component, WMI, toasts.
class MachineTest : public testing::Test
{
protected:
    MachineTest();
    ~MachineTest() override;

    // What the command answers, for instance {{"i4", 3}}.
    static void Answer(const std::string& command, const nlohmann::json& answer);
    // The failure that the command returns.
    static void Fail(const std::string& command, HRESULT hr);
    // Empties log and journal, forgets the plan: what follows is what the test looks at.
    static void StartWatching();

    // Calls into the machine since StartWatching, in order.
    [[nodiscard]] static std::vector<std::string> Calls();
    [[nodiscard]] static bool WasCalled(std::string_view call);
    // What the journal says of the n-th such call (1 = the first); null when there was none.
    [[nodiscard]] static nlohmann::json Details(std::string_view call, unsigned nth = 1);
    // Names of the platform commands that were sent, in order.
    [[nodiscard]] static std::vector<std::string> Commands();
    // Title and further texts of each toast that was shown, in order.
    [[nodiscard]] static std::vector<std::vector<std::string>> Toasts();

private:
    // Where the toast's image lies; the registry of a test is empty.
    TestSupport::PolicyKey m_programFiles{L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion"};
    Simulator::ComRedirections m_com{Simulator::Activation::InProcess};
    Simulator::ToastRedirections m_toasts;
};

// The same with a hub, on a main thread that has initialised COM as the agent's does.
class HubTest : public MachineTest
{
protected:
    HubTest() { StartWatching(); }

    HubProbe m_hub;
};
} // namespace Tests

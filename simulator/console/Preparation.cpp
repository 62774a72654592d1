#include "simulator/console/Preparation.h"

#include "simulator/console/Failure.h"
#include "simulator/console/PolicyLink.h"
#include "simulator/console/Registration.h"
#include "simulator/console/Timeline.h"
#include "simulator/devices/DriverInstallation.h"
#include "simulator/machine/Protocol.h"

#include <system_error>

namespace Simulator
{
namespace
{
bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

// Another Windows takes no driver that nobody signed.
void InstallDevices(const std::filesystem::path& driver)
{
    if (!IsWine() || !std::filesystem::exists(driver))
    {
        Timeline::Print("Without the simulated devices: " +
                        std::string(IsWine() ? "their driver was not built." : "this is not Wine."));
        return;
    }
    try
    {
        InstallDriver(driver);
    }
    catch (const std::system_error& fault)
    {
        throw UsageError(std::string("the driver of the simulated devices does not start: ") + fault.what());
    }
}

bool IsStartedByTestEnvironment()
{
    return GetEnvironmentVariableW(L"ORVIK_TESTENV", nullptr, 0) != 0;
}
} // namespace

void Prepare(const std::filesystem::path& machine, bool force)
{
    if (!force && !(IsWine() && IsStartedByTestEnvironment()))
        throw UsageError("nothing says that this is a test prefix, so it is left alone. Run this inside tools/testenv; "
                         "on a machine that may be changed for good, use --force.");
    if (!std::filesystem::exists(machine))
        throw UsageError(machine.string() + " does not exist; build the target orvik_machine");
    SeparatePolicyViews();
    Register(CompleteMachine(), machine);
    InstallDevices(machine.parent_path() / DriverFileName);
    if (const LSTATUS code = Protocol::MarkPreparedMachine(); code != ERROR_SUCCESS)
        throw UsageError(WindowsFailure("RegSetKeyValueW", static_cast<unsigned long>(code)));
}

void RequirePrepared()
{
    if (!Protocol::IsPreparedMachine())
        throw UsageError("this machine was not prepared for the simulator; run \"orvik-sim prepare\" in a test prefix");
}
} // namespace Simulator

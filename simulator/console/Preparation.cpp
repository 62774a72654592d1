#include "simulator/console/Preparation.h"

#include "simulator/console/Failure.h"
#include "simulator/console/PolicyLink.h"
#include "simulator/console/Registration.h"
#include "simulator/machine/Protocol.h"

namespace Simulator
{
namespace
{
bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
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
    if (const LSTATUS code = Protocol::MarkPreparedMachine(); code != ERROR_SUCCESS)
        throw UsageError(WindowsFailure("RegSetKeyValueW", static_cast<unsigned long>(code)));
}

void RequirePrepared()
{
    if (!Protocol::IsPreparedMachine())
        throw UsageError("this machine was not prepared for the simulator; run \"orvik-sim prepare\" in a test prefix");
}
} // namespace Simulator

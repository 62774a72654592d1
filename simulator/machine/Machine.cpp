#include "simulator/machine/Machine.h"

#include "simulator/doubles/ComRedirections.h"
#include "simulator/doubles/UnsecuredApartmentServer.h"
#include "simulator/machine/Commands.h"
#include "simulator/machine/ControlChannel.h"
#include "simulator/machine/EventLogStore.h"
#include "simulator/machine/Redirections.h"
#include "simulator/machine/WindowsVersion.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <fstream>

namespace Simulator
{
namespace
{
std::wstring EnvironmentText(const wchar_t* name)
{
    std::wstring text(32768, L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

// True without a file: the machine then has no facts but the built-in ones.
bool ReadFacts()
{
    const std::wstring path = EnvironmentText(Protocol::FactsVariable);
    if (path.empty())
        return true;
    std::ifstream file{std::filesystem::path(path)};
    const nlohmann::json facts = nlohmann::json::parse(file, nullptr, false);
    if (!facts.is_object())
        return false;
    Facts::Instance().Merge(facts);
    return true;
}

// Fact /plan: what is to fail, hang or be slow from the first call on.
bool ApplyPlan()
{
    try
    {
        for (const nlohmann::json& plan : Facts::Instance().Get("/plan"))
            PlanCalls(plan);
        return true;
    }
    catch (const std::exception&)
    {
        return false;
    }
}

void InstallRedirections()
{
    Redirections& redirections = Redirections::Instance();
    // Never destroyed, like the others.
    new ComRedirections(Activation::Registry);
    RedirectAutomationFunctions(redirections);
    RedirectRegistryFunctions(redirections);
    RedirectSystemFunctions(redirections);
    RedirectDeviceFunctions(redirections);
    RedirectDeviceNotifications(redirections);
    RedirectLibraryFunctions(redirections);
    RedirectEventLogFunctions(redirections);
    RedirectEventLogReading(redirections);
    RedirectClockFunctions(redirections);
    RedirectShellFunctions(redirections);
    RedirectFolderFunctions(redirections);
    RedirectDebugOutput(redirections);
    RedirectMessageLoop(redirections);
    RedirectDialogFunctions(redirections);
}
} // namespace

Protocol::StartResult StartMachine()
{
    using Protocol::StartResult;
    if (!Protocol::IsPreparedMachine())
        return StartResult::NotPrepared;
    if (!ReadFacts() || !ApplyPlan())
        return StartResult::BadFacts;
    if (const std::wstring store = EnvironmentText(Protocol::StoreVariable); !store.empty())
        EventLogStore::Instance().Open(store);
    if (!ControlChannel::Open(EnvironmentText(Protocol::ChannelVariable)))
        return StartResult::NoChannel;
    // Never destroyed: WMI's apartment lives as long as the process.
    static const auto* const apartment = new UnsecuredApartmentServer;
    if (FAILED(apartment->Result()))
        return StartResult::NoApartment;
    InstallRedirections();
    Journal::Instance().Append("machine", "started", {{"windows", WindowsName()}});
    return StartResult::Started;
}
} // namespace Simulator

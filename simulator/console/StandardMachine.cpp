#include "simulator/console/StandardMachine.h"

#include "simulator/console/Failure.h"
#include "simulator/console/FileState.h"
#include "simulator/console/RegistryValue.h"
#include "simulator/devices/DeviceDriver.h"
#include "simulator/devices/DriverInstallation.h"

#include <windows.h>

#include <system_error>

namespace Simulator
{
namespace
{
constexpr char g_standardFacts[] = R"({
    "commands": {
        "SmartAdapter.Supported": {"answer": {"bool": true}},
        "SmartAdapter.Status": {"answer": {"i4": 1}},
        "F10Setting.WMIEvents.Enabled": {"answer": {"bool": true}},
        "Platform.MachineID": {"answer": {"bstr": "8A11"}},
        "Platform.USBC.Supported": {"answer": {"bool": false}},
        "EmbeddedController.AuditLog": {"answer": {"bstr": "<AuditLog/>"}}
    },
    "toasts": {"timeout-ms": 0},
    "clock": {"factor": 100}
})";

constexpr const wchar_t* g_registryKeys[] = {
    L"SOFTWARE\\Policies\\Orvik",
    L"SOFTWARE\\Policies\\Brannock-Vale",
    L"SOFTWARE\\Wow6432Node\\Policies\\Orvik",
    L"SOFTWARE\\Wow6432Node\\Policies\\Brannock-Vale",
    L"SOFTWARE\\Orvik",
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\State",
};

// A new folder of the user, under the variable by which programs find it.
void MakeUserFolder(const std::filesystem::path& folder, const wchar_t* variable)
{
    Apply(FileState{.m_strPath = folder.native(), .m_strText = "", .m_bFolder = true, .m_bRemove = false});
    SetEnvironmentVariableW(variable, folder.c_str());
}
// Where the devices are not installed there is nothing to take back; steps that need them say so.
void ResetDevices()
{
    try
    {
        if (!StartInstalledDriver())
            return;
    }
    catch (const std::system_error& fault)
    {
        throw StepFailure(std::string("the driver of the simulated devices does not start: ") + fault.what());
    }
    if (const DWORD error = DeviceDriver().Reset(); error != ERROR_SUCCESS)
        throw StepFailure(WindowsFailure("the reset of the simulated devices", error));
}
} // namespace

const nlohmann::json& StandardFacts()
{
    static const nlohmann::json facts = nlohmann::json::parse(g_standardFacts);
    return facts;
}

void OverlayFacts(nlohmann::json& facts, const nlohmann::json& more)
{
    const nlohmann::json commands = more.value("commands", nlohmann::json::object());
    for (const auto& [name, behaviour] : commands.items())
        facts["commands"].erase(name);
    facts.merge_patch(more);
}

void ResetMachine(const std::filesystem::path& out)
{
    for (const wchar_t* key : g_registryKeys)
    {
        RegistryValue remove;
        remove.m_strKey = key;
        remove.m_bRemoveKey = true;
        Apply(remove);
    }
    ResetDevices();
    Apply(FileState{.m_strPath = out.native(), .m_strText = "", .m_bFolder = false, .m_bRemove = true});
    MakeUserFolder(out / L"temp", L"TEMP");
    MakeUserFolder(out / L"temp", L"TMP");
    MakeUserFolder(out / L"appdata", L"APPDATA");
    MakeUserFolder(out / L"appdata" / L"Microsoft\\Windows\\Start Menu\\Programs", L"ORVIK_SIM_PROGRAMS");
}
} // namespace Simulator

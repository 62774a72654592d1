#include "simulator/console/Registration.h"

#include "simulator/console/ObjectReader.h"
#include "simulator/console/RegistryValue.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/PlixInterfaces.h"

namespace Simulator
{
namespace
{
constexpr char g_classes[] = R"(SOFTWARE\Classes\CLSID\)";
constexpr char g_runtimeClasses[] = R"(SOFTWARE\Microsoft\WindowsRuntime\ActivatableClassId\)";

struct Part
{
    const char* m_pName;
    const char* m_pPrefix; // of the registry key
    std::string m_strClass;
    std::string m_strProgId; // empty without one
};

const Part g_parts[] = {
    {"platform-library", g_classes, GuidText(PlixCommandClassId), ""},
    {"notification-component", g_classes, GuidText(PlixNotificationClassId), Narrow(PlixNotificationProgId)},
    {"wmi", g_classes, "{4590F811-1D3A-11D0-891F-00AA004B2E24}", ""},
    {"toasts", g_runtimeClasses, "Windows.UI.Notifications.ToastNotificationManager", ""},
    {"toasts", g_runtimeClasses, "Windows.UI.Notifications.ToastNotification", ""},
};

void Write(const std::string& key, const char* name, const std::string& data)
{
    Apply(ReadRegistryValue({{"key", key}, {"name", name}, {"data", data}}, key));
}

void Remove(const std::string& key)
{
    Apply(ReadRegistryValue({{"key", key}, {"remove", true}}, key));
}

void Install(const Part& part, const std::string& machine)
{
    const std::string key = std::string(part.m_pPrefix) + part.m_strClass;
    if (part.m_pPrefix == g_runtimeClasses)
    {
        Write(key, "DllPath", machine);
        return;
    }
    Write(key + "\\InprocServer32", "", machine);
    Write(key + "\\InprocServer32", "ThreadingModel", "Both");
    if (!part.m_strProgId.empty())
        Write("SOFTWARE\\Classes\\" + part.m_strProgId + "\\CLSID", "", part.m_strClass);
}

void Uninstall(const Part& part)
{
    Remove(std::string(part.m_pPrefix) + part.m_strClass);
    if (!part.m_strProgId.empty())
        Remove("SOFTWARE\\Classes\\" + part.m_strProgId);
}
} // namespace

Installed CompleteMachine()
{
    Installed complete;
    for (const Part& part : g_parts)
        complete[part.m_pName] = true;
    return complete;
}

Installed ReadInstalledParts(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    Installed installed;
    for (const Part& part : g_parts)
    {
        if (reader.Find(part.m_pName) != nullptr)
            installed[part.m_pName] = reader.Get<bool>(part.m_pName);
    }
    reader.Finish();
    return installed;
}

void Register(const Installed& installed, const std::filesystem::path& machine)
{
    for (const Part& part : g_parts)
    {
        const auto named = installed.find(part.m_pName);
        if (named == installed.end())
            continue;
        if (named->second)
            Install(part, Narrow(machine.native()));
        else
            Uninstall(part);
    }
}
} // namespace Simulator

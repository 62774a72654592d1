#include "simulator/doubles/WmiInstances.h"

#include "simulator/model/Facts.h"

#include <algorithm>
#include <bit>

namespace Simulator
{
namespace
{
constexpr std::string_view OperatingSystemClass = "Win32_OperatingSystem";

std::string RealVersion()
{
    // GetVersionEx answers what the manifest allows; this one what is true.
    using RtlGetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
    const auto getVersion =
        std::bit_cast<RtlGetVersionFunction>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion"));
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (getVersion != nullptr)
        getVersion(&version);
    return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
           std::to_string(version.dwBuildNumber);
}

nlohmann::json OperatingSystem()
{
    if (Facts::Instance().Get("/wmi/os/instances") == 0)
        return nlohmann::json::array();
    nlohmann::json version = Facts::Instance().Get("/wmi/os/version");
    nlohmann::json instance = nlohmann::json::object();
    if (version.is_null())
        version = RealVersion();
    if (!version.is_object() || !version.contains("missing"))
        instance["Version"] = std::move(version);
    return nlohmann::json::array({std::move(instance)});
}

// The fact's key whose class it is; class names have no letter case.
nlohmann::json FactOf(std::string_view normalNamespace, std::string_view className)
{
    const nlohmann::json classes = Facts::Instance().Get("/wmi/classes");
    for (const auto& [name, instances] : classes.items())
    {
        if (EqualNames(name, className))
            return instances;
    }
    const bool isSystem = normalNamespace == R"(root\cimv2)" && EqualNames(className, OperatingSystemClass);
    return isSystem ? OperatingSystem() : nlohmann::json();
}

nlohmann::json Selected(const nlohmann::json& properties, const std::vector<std::string>& wanted)
{
    if (!properties.is_object() || wanted.front() == "*")
        return properties;
    nlohmann::json selected = nlohmann::json::object();
    for (const auto& [name, value] : properties.items())
    {
        if (std::ranges::any_of(wanted, [&](const auto& entry) { return EqualNames(entry, name); }))
            selected[name] = value;
    }
    return selected;
}
} // namespace

std::optional<std::deque<EnumWbemClassObjectDouble::Instance>> InstancesOf(std::string_view normalNamespace,
                                                                           const WmiQuery& query)
{
    const nlohmann::json fact = FactOf(normalNamespace, query.m_strClass);
    if (!fact.is_array())
        return std::nullopt;
    std::deque<EnumWbemClassObjectDouble::Instance> instances;
    for (const nlohmann::json& properties : fact)
        instances.push_back({query.m_strClass, Selected(properties, query.m_lstProperties)});
    return instances;
}
} // namespace Simulator

#include "simulator/console/Number.h"
#include "simulator/console/Step.h"
#include "simulator/devices/DeviceKeys.h"
#include "simulator/doubles/JournalText.h"

#include <winioctl.h>

#include <dbt.h>
#include <usbioctl.h>

#include <algorithm>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;
using Devices::PortAnswers;
using Devices::PortCount;

// Drivers answer so many requests without a limit.
constexpr ULONG g_allAnswers = 0xFFFFFFFF;

void Check(DWORD error, const char* what)
{
    if (error != ERROR_SUCCESS)
        throw StepFailure(WindowsFailure(what, error));
}

ULONG ReadPort(const nlohmann::json& value, const std::string& place)
{
    const ULONG port = ReadNumber(value, place, PortCount);
    if (port == 0)
        throw UsageError(place + ": ports are numbered from 1");
    return port;
}

// The beginning of the device's interface name, in lower case as Windows tells it.
std::string InterfacePrefix(ULONG port)
{
    std::string text = Narrow(UsbInstanceId(port));
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return c == '\\' ? '#' : static_cast<char>(std::tolower(c)); });
    return R"(\\?\)" + text + "#";
}

// An agent that has asked for arrivals has handled this one when the step ends.
void WaitUntilHeard(ScenarioRun& run, ULONG port, WPARAM event)
{
    if (!run.IsRunning() || !run.HearsArrivals())
        return;
    const std::string prefix = InterfacePrefix(port);
    const auto isTold = [&](const Entry& entry)
    {
        if (entry.m_strKind != "agent" || entry.m_strSubject != "device-change")
            return false;
        std::string name = entry.m_details.value("name", "");
        std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return entry.m_details.value("event", WPARAM{0}) == event && name.starts_with(prefix);
    };
    if (!run.Take(isTold))
        throw StepFailure("the agent was not told of the device");
}

// {"port": 1, "class": 17}: a device of that class arrives.
Action ReadPlug(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const ULONG port = ReadPort(reader.Get<nlohmann::json>("port", 1u), reader.PlaceOf("port"));
    const ULONG deviceClass = ReadNumber(reader.Required("class"), reader.PlaceOf("class"), 0xFF);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        run.Mark();
        run.Say("user",
                "plugs a USB device of class " + HexText(deviceClass, 2) + " into port " + std::to_string(port));
        Check(run.Devices().PlugDevice(port, deviceClass), "plugging the device");
        WaitUntilHeard(run, port, DBT_DEVICEARRIVAL);
    };
}

// The number of the port.
Action ReadUnplug(const nlohmann::json& value, const std::string& place)
{
    const ULONG port = ReadPort(value, place);
    return [=](ScenarioRun& run)
    {
        run.Mark();
        run.Say("user", "unplugs the USB device of port " + std::to_string(port));
        Check(run.Devices().UnplugDevice(port), "unplugging the device");
        WaitUntilHeard(run, port, DBT_DEVICEREMOVECOMPLETE);
    };
}

// {"port", "connection-status", "class", "connection-failure", "driver-key", "driver-key-failure",
//  "driver-key-answers", "driver-key-length"}: what the hub says of a port until the next device comes or goes.
Action ReadUsbPort(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    PortAnswers answers{};
    const auto number = [&](const char* key, unsigned long absent)
    { return ReadNumber(reader.Get<nlohmann::json>(key, absent), reader.PlaceOf(key)); };
    answers.m_nPort = ReadPort(reader.Required("port"), reader.PlaceOf("port"));
    answers.m_nConnectionStatus = number("connection-status", DeviceConnected);
    answers.m_nDeviceClass = number("class", 0);
    answers.m_nConnectionFailure = static_cast<LONG>(number("connection-failure", 0));
    answers.m_nDriverKeyFailure = static_cast<LONG>(number("driver-key-failure", 0));
    answers.m_nDriverKeyAnswers = number("driver-key-answers", answers.m_nDriverKeyFailure != 0 ? 0 : g_allAnswers);
    answers.m_nDriverKeyLength = number("driver-key-length", 0);
    std::wstring driverKey = Devices::DriverKeys[answers.m_nPort - 1];
    if (reader.Find("driver-key") != nullptr)
        driverKey = Wide(reader.Get<std::string>("driver-key"));
    reader.Finish();
    driverKey.resize(std::min<std::size_t>(driverKey.size(), Devices::DriverKeyRoom));
    std::ranges::copy(driverKey, answers.m_szDriverKey);
    return [=](ScenarioRun& run) { Check(run.Devices().SetPortAnswers(answers), "the answers of the port"); };
}

// The number of ports that the hub says it has.
Action ReadUsbPorts(const nlohmann::json& value, const std::string& place)
{
    const ULONG count = ReadNumber(value, place, 0xFF);
    return [=](ScenarioRun& run) { Check(run.Devices().SetReportedPorts(count), "the number of ports"); };
}
} // namespace

std::vector<StepKind> UsbSteps()
{
    return {{"plug", &ReadPlug}, {"unplug", &ReadUnplug}, {"usb-port", &ReadUsbPort}, {"usb-ports", &ReadUsbPorts}};
}
} // namespace Simulator

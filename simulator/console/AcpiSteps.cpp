#include "simulator/console/Number.h"
#include "simulator/console/Step.h"

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

void Check(DWORD error, const char* what)
{
    if (error != ERROR_SUCCESS)
        throw StepFailure(WindowsFailure(what, error));
}

// Waits until the agent has taken what was done to its request: it has asked for the next event, and its main thread
// has handled what the monitor posted.
void WaitForNextRequest(ScenarioRun& run)
{
    const DWORD error = run.Devices().WaitForRequest(run.GetOptions().m_limit);
    if (error == WAIT_TIMEOUT)
        throw StepFailure("the agent does not ask for the next ACPI event");
    Check(error, "waiting for the request of the ACPI event device");
    run.WaitUntilIdle();
}

// The byte of an event, or {"data", "length": 1 or 0, "times": 1, "wait": true}. Before the agent runs events are kept
// for it.
Action ReadAcpiEvent(const nlohmann::json& value, const std::string& place)
{
    const nlohmann::json object = value.is_object() ? value : nlohmann::json{{"data", value}};
    ObjectReader reader(object, place);
    const auto data =
        static_cast<BYTE>(ReadNumber(reader.Get<nlohmann::json>("data", 0u), reader.PlaceOf("data"), 0xFF));
    const bool hasData = ReadNumber(reader.Get<nlohmann::json>("length", 1u), reader.PlaceOf("length"), 1) != 0;
    const auto times = reader.Get<unsigned>("times", 1);
    const auto wait = reader.Get<bool>("wait", true);
    reader.Finish();
    const std::string text = (hasData ? "ACPI event " + HexText(data, 2) : std::string("ACPI event without data")) +
                             (times != 1 ? ", " + std::to_string(times) + " times" : "");
    return [=](ScenarioRun& run)
    {
        run.Mark();
        run.Say("firmware", "raises " + text);
        for (unsigned i = 0; i < times; ++i)
        {
            DeviceDriver& devices = run.Devices();
            Check(hasData ? devices.CompleteRequest(data) : devices.CompleteRequestWithoutData(), "the ACPI event");
            if (wait && run.IsRunning())
                WaitForNextRequest(run);
        }
    };
}

// The NTSTATUS with which the pending request fails, or {"status", "wait": true}.
Action ReadAcpiFailure(const nlohmann::json& value, const std::string& place)
{
    const nlohmann::json object = value.is_object() ? value : nlohmann::json{{"status", value}};
    ObjectReader reader(object, place);
    const unsigned long status = ReadNumber(reader.Required("status"), reader.PlaceOf("status"));
    const auto wait = reader.Get<bool>("wait", true);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        run.Mark();
        run.Say("firmware", "lets the pending ACPI request fail with " + HexText(status, 8));
        Check(run.Devices().FailRequest(static_cast<LONG>(status)), "the failure of the ACPI request");
        if (wait)
            WaitForNextRequest(run);
    };
}

// The NTSTATUS with which every request fails at once from now on; 0 ends that.
Action ReadAcpiRefusal(const nlohmann::json& value, const std::string& place)
{
    const unsigned long status = ReadNumber(value, place);
    return [=](ScenarioRun& run)
    {
        run.Say("firmware", status != 0 ? "refuses ACPI requests from now on with " + HexText(status, 8)
                                        : std::string("takes ACPI requests again"));
        Check(run.Devices().RefuseRequests(static_cast<LONG>(status)), "the refusal of ACPI requests");
    };
}

// Whether the device is there.
Action ReadAcpiDevice(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_boolean())
        throw UsageError(place + ": true or false is expected");
    const bool present = value.get<bool>();
    return [present](ScenarioRun& run)
    {
        run.Mark();
        run.Say("windows", present ? "the ACPI event device is there" : "the ACPI event device is gone");
        Check(run.Devices().SetAcpiPresent(present), "the ACPI event device");
    };
}

// Waits until the agent has asked for an event.
Action ReadAcpiPending(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        WaitForNextRequest(run);
        run.Say("check", "the agent waits for an ACPI event");
    };
}
} // namespace

std::vector<StepKind> AcpiSteps()
{
    return {{"acpi-event", &ReadAcpiEvent},
            {"acpi-failure", &ReadAcpiFailure},
            {"acpi-refusal", &ReadAcpiRefusal},
            {"acpi-device", &ReadAcpiDevice},
            {"acpi-pending", &ReadAcpiPending}};
}
} // namespace Simulator

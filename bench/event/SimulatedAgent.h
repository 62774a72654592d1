#pragma once

#include "bench/event/AcpiEventDevice.h"
#include "shared/OwnerTypes.h"
#include "simulator/doubles/ComRedirections.h"
#include "simulator/toasts/ToastRedirections.h"
#include "wmievents/OrvikWmiEvents.h"

#include <windows.h>

#include <cstdint>

namespace EventBench
{
// For the life of the object HKEY_LOCAL_MACHINE of this process is an empty key of its own: no policy of this machine
// counts.
class PrivateRegistry
{
public:
    // Raises std::runtime_error when the system refuses.
    PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;
    ~PrivateRegistry();

    // Writes a text under that key, which is made.
    static void Write(const wchar_t* key, const wchar_t* name, const wchar_t* text);
};

// What the logger takes: the bits of g_enabledLevels.
struct LogLevels
{
    std::uint32_t m_nByDefault; // without a policy
    std::uint32_t m_nAll;       // with the policy that sends everything to the event log, where a function drops it
};

// The agent as it stands in a simulated machine: registered for the firmware's events, with the handler of the ACPI
// machine and its main window. The firmware has one USB-C message on each port, and an adapter that is too small. Every
// way out of the agent's code is watched. Made and destroyed on the main thread, one per process; a failure raises
// std::runtime_error.
class SimulatedAgent
{
public:
    SimulatedAgent();
    SimulatedAgent(const SimulatedAgent&) = delete;
    SimulatedAgent& operator=(const SimulatedAgent&) = delete;
    ~SimulatedAgent();

    [[nodiscard]] LogLevels Levels() const { return m_levels; }

private:
    PrivateRegistry m_registry;
    LogLevels m_levels;
    Simulator::ComRedirections m_com{Simulator::Activation::InProcess};
    Simulator::ToastRedirections m_toasts;
    AcpiEventDevice m_device;
    Notifications::OrvikWmiEvents::COrvikWmiEvents m_hub;
};
} // namespace EventBench

#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/console/Environment.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace Simulator
{
// An unmodified program that runs inside the simulated machine. The process ends with its owner at the latest.
class AgentProcess
{
public:
    // Starts the program suspended, loads the machine into it, starts the machine, and lets the program run.
    // Throws UsageError with a sentence.
    AgentProcess(const std::filesystem::path& program, const std::filesystem::path& machine,
                 const EnvironmentChanges& environment);
    AgentProcess(const AgentProcess&) = delete;
    AgentProcess& operator=(const AgentProcess&) = delete;
    ~AgentProcess();

    // The exit code once the process has ended; nothing when it still runs after that time.
    [[nodiscard]] std::optional<DWORD> WaitForExit(std::chrono::milliseconds limit);
    void Terminate();

    // The program's own code begins.
    void Resume();

private:
    void LoadMachine(const std::filesystem::path& machine);
    DWORD RunRemotely(void* function, void* argument);
    [[nodiscard]] std::uintptr_t MachineBase() const;

    DWORD m_dwId = 0;
    Orvik::Shared::UniqueHandle m_hProcess;
    Orvik::Shared::UniqueHandle m_hMainThread;
};
} // namespace Simulator

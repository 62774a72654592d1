#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <memory>
#include <vector>

namespace Simulator
{
// The redirected functions of the agent's program. They stay until the process is gone: its threads may call them to
// the very end.
class Redirections
{
public:
    static Redirections& Instance();

    // Points every import and look-up of that function of the program at the replacement.
    template <class Function>
    void Add(const char* functionName, Function* replacement)
    {
        m_lstRedirections.push_back(
            std::make_unique<ImportRedirection>(nullptr, functionName, reinterpret_cast<void*>(replacement)));
    }

    template <class Planned>
    void AddPlanned()
    {
        Add(Planned::FunctionName(), &Planned::Call);
    }

private:
    std::vector<std::unique_ptr<ImportRedirection>> m_lstRedirections;
};

// Each adds the functions of one subject; all of them together are the machine.
void RedirectAutomationFunctions(Redirections& redirections);
void RedirectRegistryFunctions(Redirections& redirections);
void RedirectSystemFunctions(Redirections& redirections);
void RedirectDeviceFunctions(Redirections& redirections);
void RedirectDeviceNotifications(Redirections& redirections);
void RedirectLibraryFunctions(Redirections& redirections);
void RedirectEventLogFunctions(Redirections& redirections);
void RedirectEventLogReading(Redirections& redirections);
void RedirectClockFunctions(Redirections& redirections);
void RedirectShellFunctions(Redirections& redirections);
void RedirectFolderFunctions(Redirections& redirections);
void RedirectDebugOutput(Redirections& redirections);
void RedirectMessageLoop(Redirections& redirections);
void RedirectDialogFunctions(Redirections& redirections);
} // namespace Simulator

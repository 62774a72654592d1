#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"

namespace Simulator
{
void RedirectRegistryFunctions(Redirections& redirections)
{
    redirections.AddPlanned<PlannedCall<"RegOpenKeyExW", FailsAs::Win32Code, decltype(RegOpenKeyExW)>>();
    redirections.AddPlanned<PlannedCall<"RegQueryValueExW", FailsAs::Win32Code, decltype(RegQueryValueExW)>>();
    redirections.AddPlanned<PlannedCall<"RegGetValueW", FailsAs::Win32Code, decltype(RegGetValueW)>>();
}
} // namespace Simulator

#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"

#include <psapi.h>
#include <shlobj.h>
#include <wtsapi32.h>

namespace Simulator
{
namespace
{
template <CallName Name, class Function>
using SystemCall = PlannedCall<Name, FailsAs::Zero, Function>;
} // namespace

void RedirectSystemFunctions(Redirections& redirections)
{
    redirections.AddPlanned<SystemCall<"CreateMutexW", decltype(CreateMutexW)>>();
    redirections.AddPlanned<SystemCall<"CreateEventW", decltype(CreateEventW)>>();
    redirections.AddPlanned<SystemCall<"VerifyVersionInfoW", decltype(VerifyVersionInfoW)>>();
    redirections.AddPlanned<SystemCall<"GetModuleFileNameW", decltype(GetModuleFileNameW)>>();
    redirections.AddPlanned<SystemCall<"K32GetModuleFileNameExW", decltype(K32GetModuleFileNameExW)>>();
    redirections.AddPlanned<SystemCall<"GetEnvironmentVariableW", decltype(GetEnvironmentVariableW)>>();
    redirections.AddPlanned<SystemCall<"GetTempPathW", decltype(GetTempPathW)>>();
    redirections.AddPlanned<PlannedCall<"GetFileAttributesW", FailsAs::MinusOne, decltype(GetFileAttributesW)>>();
    redirections.AddPlanned<SystemCall<"FindResourceW", decltype(FindResourceW)>>();
    redirections.AddPlanned<SystemCall<"LoadResource", decltype(LoadResource)>>();
    redirections.AddPlanned<SystemCall<"LockResource", decltype(LockResource)>>();
    redirections.AddPlanned<SystemCall<"SizeofResource", decltype(SizeofResource)>>();
    redirections.AddPlanned<SystemCall<"SHGetSpecialFolderPathW", decltype(SHGetSpecialFolderPathW)>>();

    redirections.AddPlanned<SystemCall<"RegisterClassExW", decltype(RegisterClassExW)>>();
    redirections.AddPlanned<SystemCall<"CreateWindowExW", decltype(CreateWindowExW)>>();
    redirections.AddPlanned<SystemCall<"LoadStringW", decltype(LoadStringW)>>();
    redirections.AddPlanned<SystemCall<"LoadAcceleratorsW", decltype(LoadAcceleratorsW)>>();
    redirections.AddPlanned<SystemCall<"UnregisterDeviceNotification", decltype(UnregisterDeviceNotification)>>();
    redirections.AddPlanned<SystemCall<"SetForegroundWindow", decltype(SetForegroundWindow)>>();
    redirections.AddPlanned<SystemCall<"WTSRegisterSessionNotification", decltype(WTSRegisterSessionNotification)>>();
}
} // namespace Simulator

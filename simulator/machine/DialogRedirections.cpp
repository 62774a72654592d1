#include "simulator/machine/AgentThreads.h"
#include "simulator/machine/DialogDesktop.h"
#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"

namespace Simulator
{
namespace
{
using DialogCall = PlannedCall<"DialogBoxParamW", FailsAs::MinusOne, decltype(DialogBoxParamW)>;
using BoxCall = PlannedCall<"MessageBoxW", FailsAs::Zero, decltype(MessageBoxW)>;

INT_PTR WINAPI DialogBoxParamWOfMachine(HINSTANCE module, LPCWSTR name, HWND owner, DLGPROC procedure, LPARAM parameter)
{
    return DialogDesktop::Instance().Watch([&] { return DialogCall::Call(module, name, owner, procedure, parameter); });
}

int WINAPI MessageBoxWOfMachine(HWND owner, LPCWSTR text, LPCWSTR title, UINT type)
{
    return DialogDesktop::Instance().Watch([&] { return BoxCall::Call(owner, text, title, type); });
}

HANDLE WINAPI CreateThreadOfMachine(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE routine,
                                    LPVOID parameter, DWORD flags, LPDWORD threadId)
{
    if (const HRESULT hr = CallPlan::Instance().Enter("CreateThread"); FAILED(hr))
    {
        SetLastError(ErrorNumber(hr));
        return nullptr;
    }
    return StartAgentThread(security, stackSize, routine, parameter, flags, threadId);
}
} // namespace

void RedirectDialogFunctions(Redirections& redirections)
{
    redirections.Add("DialogBoxParamW", &DialogBoxParamWOfMachine);
    redirections.Add("MessageBoxW", &MessageBoxWOfMachine);
    redirections.Add("CreateThread", &CreateThreadOfMachine);
}
} // namespace Simulator

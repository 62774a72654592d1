#include "simulator/machine/Redirections.h"
#include "simulator/model/Journal.h"
#include "simulator/toasts/ToastDesktop.h"

#include <mutex>

namespace Simulator
{
namespace
{
// The first call says that the agent's start-up is over. With WM_QUIT the process is about to end: the machine takes
// its windows away before, since Wine hangs when it ends a thread that is just drawing.
BOOL WINAPI GetMessageWOfMachine(LPMSG message, HWND window, UINT first, UINT last)
{
    static std::once_flag once;
    std::call_once(once, [] { Journal::Instance().Append("agent", "ready"); });
    const BOOL result = GetMessageW(message, window, first, last);
    Journal::Instance().Append("agent", "message", {{"message", message->message}, {"wparam", message->wParam}});
    if (result == 0)
        ToastDesktop::Instance().Reset();
    return result;
}
} // namespace

void RedirectMessageLoop(Redirections& redirections)
{
    redirections.Add("GetMessageW", &GetMessageWOfMachine);
}
} // namespace Simulator

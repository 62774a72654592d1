#include "simulator/machine/Redirections.h"
#include "simulator/model/Journal.h"

#include <mutex>

namespace Simulator
{
namespace
{
// The machine only listens here. The first call says that the agent's start-up is over.
BOOL WINAPI GetMessageWOfMachine(LPMSG message, HWND window, UINT first, UINT last)
{
    static std::once_flag once;
    std::call_once(once, [] { Journal::Instance().Append("agent", "ready"); });
    const BOOL result = GetMessageW(message, window, first, last);
    Journal::Instance().Append("agent", "message", {{"message", message->message}, {"wparam", message->wParam}});
    return result;
}
} // namespace

void RedirectMessageLoop(Redirections& redirections)
{
    redirections.Add("GetMessageW", &GetMessageWOfMachine);
}
} // namespace Simulator

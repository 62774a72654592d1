#include "simulator/doubles/JournalText.h"
#include "simulator/machine/Redirections.h"
#include "simulator/model/Journal.h"

namespace Simulator
{
namespace
{
void WINAPI OutputDebugStringWOfMachine(LPCWSTR text)
{
    const DWORD lastError = GetLastError();
    Journal::Instance().Append("debug-output", text != nullptr ? Narrow(text) : std::string());
    SetLastError(lastError);
}
} // namespace

void RedirectDebugOutput(Redirections& redirections)
{
    redirections.Add("OutputDebugStringW", &OutputDebugStringWOfMachine);
}
} // namespace Simulator

#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <shellapi.h>

namespace Simulator
{
namespace
{
// Above 32 is success; Windows promises nothing about the number.
constexpr int g_success = 42;

std::string TextOrEmpty(LPCWSTR text)
{
    return text != nullptr ? Narrow(text) : std::string();
}

// The program is recorded and not run. Fact /shell-execute/result is the number to answer: SE_ERR_FNF (2) for a file
// that is missing; the machine starts everything without it.
HINSTANCE WINAPI ShellExecuteWOfMachine(HWND, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR folder, INT show)
{
    int result = g_success;
    if (const HRESULT hr = CallPlan::Instance().Enter("ShellExecuteW"); FAILED(hr))
        result = static_cast<int>(ErrorNumber(hr) & 31u);
    else if (const nlohmann::json fact = Facts::Instance().Get("/shell-execute/result"); fact.is_number_integer())
        result = fact.get<int>();
    Journal::Instance().Append("program", TextOrEmpty(file),
                               {{"verb", TextOrEmpty(verb)},
                                {"parameters", TextOrEmpty(parameters)},
                                {"folder", TextOrEmpty(folder)},
                                {"show", show},
                                {"result", result}});
    if (result <= 32)
        SetLastError(static_cast<DWORD>(result));
    return reinterpret_cast<HINSTANCE>(static_cast<INT_PTR>(result));
}
} // namespace

void RedirectShellFunctions(Redirections& redirections)
{
    redirections.Add("ShellExecuteW", &ShellExecuteWOfMachine);
}
} // namespace Simulator

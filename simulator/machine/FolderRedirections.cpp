#include "simulator/machine/Redirections.h"
#include "simulator/model/CallPlan.h"

#include <shlobj.h>

namespace Simulator
{
namespace
{
// The user's application data are where the variable says, as on a real machine; Wine goes by the registry alone.
HRESULT WINAPI SHGetFolderPathWOfMachine(HWND owner, int folder, HANDLE token, DWORD flags, LPWSTR path)
{
    const HRESULT hr = CallPlan::Instance().Enter("SHGetFolderPathW", {{"folder", folder}});
    if (FAILED(hr))
        return hr;
    if ((folder & ~CSIDL_FLAG_MASK) != CSIDL_APPDATA)
        return SHGetFolderPathW(owner, folder, token, flags, path);
    const DWORD length = GetEnvironmentVariableW(L"APPDATA", path, MAX_PATH);
    return length != 0 && length < MAX_PATH ? S_OK : E_FAIL;
}
} // namespace

void RedirectFolderFunctions(Redirections& redirections)
{
    redirections.Add("SHGetFolderPathW", &SHGetFolderPathWOfMachine);
}
} // namespace Simulator

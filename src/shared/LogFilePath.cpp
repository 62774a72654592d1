#include "shared/LogFilePath.h"

#include "shared/ModuleName.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>

namespace Orvik::Shared
{
std::wstring LogFilePath()
{
    wchar_t applicationData[MAX_PATH]{};
    if (FAILED(
            SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, applicationData)))
        return {};
    std::wstring path = std::wstring(applicationData) + L"\\orvikLog";
    if (!CreateDirectoryW(path.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        return {};
    path += L'\\' + ModuleBaseName() + L".log";
    return path.size() < MAX_PATH ? path : std::wstring();
}

std::wstring LogMutexName(const std::wstring& logPath)
{
    const std::size_t colon = logPath.find(L':');
    std::wstring name = colon == std::wstring::npos || colon == 0 ? logPath : logPath.substr(colon + 1);
    std::ranges::replace(name, L'\\', L'.');
    return L"Global\\" + name;
}
} // namespace Orvik::Shared

#include "shared/ModuleName.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <vector>

namespace Orvik::Shared
{
namespace
{
constexpr DWORD g_basePathCapacity = 520;

std::wstring VersionText(const std::vector<std::byte>& version, const wchar_t* block)
{
    void* text = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(version.data(), block, &text, &length) || text == nullptr)
        return {};
    // The length counts the terminator; some resource compilers count bytes, so the terminator decides.
    const std::wstring_view view(static_cast<const wchar_t*>(text), length);
    return std::wstring(view.substr(0, view.find(L'\0')));
}
} // namespace

std::wstring ModuleBaseName()
{
    wchar_t path[g_basePathCapacity]{};
    const DWORD length = GetModuleFileNameW(nullptr, path, g_basePathCapacity);
    std::wstring_view name(path, std::min(length, g_basePathCapacity - 1));
    name.remove_prefix(name.rfind(L'\\') + 1);
    return std::wstring(name.substr(0, name.rfind(L'.')));
}

std::wstring PathBesideProgram(std::wstring_view fileName)
{
    wchar_t path[MAX_PATH]{};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring result(path, wcsnlen(path, MAX_PATH));
    const std::size_t lastBackslash = result.rfind(L'\\');
    if (lastBackslash != std::wstring::npos)
        result.resize(lastBackslash);
    return result.append(1, L'\\').append(fileName);
}

std::wstring ProductName()
{
    wchar_t path[MAX_PATH]{};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length == MAX_PATH)
        return {};
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path, &ignored);
    if (size == 0)
        return {};
    std::vector<std::byte> version(size);
    if (!GetFileVersionInfoW(path, 0, size, version.data()))
        return {};
    std::wstring name = VersionText(version, L"\\StringFileInfo\\040904E4\\ProductName");
    if (name.empty())
        name = VersionText(version, L"\\StringFileInfo\\040904B0\\ProductName");
    return name;
}
} // namespace Orvik::Shared

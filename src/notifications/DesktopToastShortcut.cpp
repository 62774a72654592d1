#include "notifications/DesktopToast.h"

#include "notifications/ApplicationId.h"
#include "platform/OutOfMemoryResult.h"
#include "platform/RequireObject.h"
#include "shared/LastErrorResult.h"
#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"

#include <comdef.h>
#include <propidl.h>
#include <propsys.h>
#include <psapi.h>
#include <shlobj.h>

#include <cwchar>

using Orvik::Shared::CriticalSectionLock;
using Orvik::Shared::TraceScope;

namespace
{
constexpr wchar_t ShortcutBelowAppData[] = L"\\Microsoft\\Windows\\Start Menu\\Programs\\Toaster Message.lnk";

// PKEY_AppUserModel_ID
constexpr PROPERTYKEY ApplicationIdKey = {
    {0x9F4C2855, 0x9F79, 0x4B39, {0xA8, 0xD0, 0xE1, 0xD4, 0x2D, 0xE1, 0xD5, 0xF3}}, 5};

_COM_SMARTPTR_TYPEDEF(IShellLinkW, IID_IShellLinkW);
_COM_SMARTPTR_TYPEDEF(IPropertyStore, __uuidof(IPropertyStore));
_COM_SMARTPTR_TYPEDEF(IPersistFile, IID_IPersistFile);

// A property value that owns a copy of a text.
class TextProperty
{
public:
    TextProperty() = default;
    TextProperty(const TextProperty&) = delete;
    TextProperty& operator=(const TextProperty&) = delete;
    ~TextProperty() { PropVariantClear(&m_value); }

    [[nodiscard]] HRESULT Set(const wchar_t* text)
    {
        const std::size_t length = std::wcslen(text) + 1;
        m_value.pwszVal = static_cast<wchar_t*>(CoTaskMemAlloc(length * sizeof(wchar_t)));
        if (m_value.pwszVal == nullptr)
            return E_OUTOFMEMORY;
        std::wmemcpy(m_value.pwszVal, text, length);
        m_value.vt = VT_LPWSTR;
        return S_OK;
    }
    [[nodiscard]] const PROPVARIANT& Value() const noexcept { return m_value; }

private:
    PROPVARIANT m_value{};
};

// Never destroyed: a toast may still be on its way when the process ends.
struct ShortcutSection : CRITICAL_SECTION
{
    ShortcutSection() noexcept { InitializeCriticalSection(this); }
};

// Held from the look for a shortcut until it is written: without it a thread would write over, or take for its own and
// delete, what another one has saved meanwhile. Any thread.
CRITICAL_SECTION& ShortcutLock()
{
    static ShortcutSection section;
    return section;
}

HRESULT ShortcutPath(std::wstring& path)
{
    wchar_t appData[MAX_PATH] = L"";
    const DWORD length = GetEnvironmentVariableW(L"APPDATA", appData, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return E_INVALIDARG;
    path = std::wstring(appData) + ShortcutBelowAppData;
    return path.size() < MAX_PATH ? S_OK : E_INVALIDARG;
}

HRESULT PathOfThisProgram(wchar_t (&path)[MAX_PATH])
{
    const DWORD length = K32GetModuleFileNameExW(GetCurrentProcess(), nullptr, path, MAX_PATH);
    if (length == 0)
        return LastErrorResult();
    // A path that does not fit is cut, and a shortcut to the cut path would start nothing.
    return length < MAX_PATH ? S_OK : HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
}

HRESULT SetApplicationId(IShellLinkW* link)
{
    IPropertyStorePtr spStore;
    HRESULT hr =
        RequireObject(link->QueryInterface(__uuidof(IPropertyStore), reinterpret_cast<void**>(&spStore)), spStore);
    TextProperty applicationId;
    if (SUCCEEDED(hr))
        hr = applicationId.Set(ApplicationUserModelId);
    if (SUCCEEDED(hr))
        hr = spStore->SetValue(ApplicationIdKey, applicationId.Value());
    if (SUCCEEDED(hr))
        hr = spStore->Commit();
    return hr;
}

// S_OK: there is a file or folder of that name; S_FALSE: there is none; else why it cannot be told.
HRESULT LookForFile(const std::wstring& path)
{
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES)
        return S_OK;
    const HRESULT hr = LastErrorResult();
    const bool isMissing =
        hr == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) || hr == HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    return isMissing ? S_FALSE : hr;
}

HRESULT SaveLink(IShellLinkW* link, const std::wstring& path)
{
    IPersistFilePtr spFile;
    HRESULT hr = RequireObject(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&spFile)), spFile);
    if (FAILED(hr))
        return hr;
    const bool isNew = LookForFile(path) == S_FALSE;
    hr = spFile->Save(path.c_str(), TRUE);
    // A half-written file would pass for an installed shortcut at every later start.
    if (FAILED(hr) && isNew)
        DeleteFileW(path.c_str());
    return hr;
}
} // namespace

HRESULT DesktopToast::TryCreateShortcut()
{
    TraceScope trace(ORVIK_FUNCTION);
    std::wstring path;
    HRESULT hr = OutOfMemoryResult([&] { return ShortcutPath(path); });
    if (FAILED(hr))
        return trace.Exit(hr);
    const CriticalSectionLock lock(ShortcutLock());
    hr = LookForFile(path);
    if (hr == S_FALSE)
        hr = InstallShortcut(path);
    return trace.Exit(hr);
}

HRESULT DesktopToast::InstallShortcut(const std::wstring& shortcutPath)
{
    TraceScope trace(ORVIK_FUNCTION);
    const CriticalSectionLock lock(ShortcutLock());
    wchar_t program[MAX_PATH] = L"";
    HRESULT hr = PathOfThisProgram(program);
    IShellLinkWPtr spLink;
    if (SUCCEEDED(hr))
        hr = RequireObject(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                            reinterpret_cast<void**>(&spLink)),
                           spLink);
    if (SUCCEEDED(hr))
        hr = spLink->SetPath(program);
    if (SUCCEEDED(hr))
        hr = SetApplicationId(spLink);
    if (SUCCEEDED(hr))
        hr = SaveLink(spLink, shortcutPath);
    return trace.Exit(hr);
}

#include "notifications/DesktopToast.h"

#include "notifications/ApplicationId.h"
#include "notifications/RequireObject.h"
#include "shared/LastErrorResult.h"
#include "shared/TraceScope.h"

#include <comdef.h>
#include <propidl.h>
#include <propsys.h>
#include <psapi.h>
#include <shlobj.h>

#include <cwchar>

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

HRESULT PathOfThisProgram(std::wstring& path)
{
    wchar_t buffer[MAX_PATH] = L"";
    const DWORD length = K32GetModuleFileNameExW(GetCurrentProcess(), nullptr, buffer, MAX_PATH);
    if (length == 0)
        return LastErrorResult();
    // A path that does not fit is cut, and a shortcut to the cut path would start nothing.
    if (length >= MAX_PATH)
        return HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
    path.assign(buffer, length);
    return S_OK;
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
    wchar_t appData[MAX_PATH] = L"";
    const DWORD length = GetEnvironmentVariableW(L"APPDATA", appData, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return trace.Exit(E_INVALIDARG);
    const std::wstring path = std::wstring(appData) + ShortcutBelowAppData;
    if (path.size() >= MAX_PATH)
        return trace.Exit(E_INVALIDARG);
    HRESULT hr = LookForFile(path);
    if (hr == S_FALSE)
        hr = InstallShortcut(path);
    return trace.Exit(hr);
}

HRESULT DesktopToast::InstallShortcut(const std::wstring& shortcutPath)
{
    TraceScope trace(ORVIK_FUNCTION);
    std::wstring program;
    HRESULT hr = PathOfThisProgram(program);
    IShellLinkWPtr spLink;
    if (SUCCEEDED(hr))
        hr = RequireObject(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                            reinterpret_cast<void**>(&spLink)),
                           spLink);
    if (SUCCEEDED(hr))
        hr = spLink->SetPath(program.c_str());
    if (SUCCEEDED(hr))
        hr = SetApplicationId(spLink);
    if (SUCCEEDED(hr))
        hr = SaveLink(spLink, shortcutPath);
    return trace.Exit(hr);
}

#include "notifications/WindowsRuntime.h"

#include "platform/RequireObject.h"
#include "shared/LastErrorResult.h"

namespace WindowsRuntime
{
namespace
{
using RoGetActivationFactoryFunction = HRESULT(WINAPI*)(HSTRING, REFIID, void**);
using WindowsCreateStringFunction = HRESULT(WINAPI*)(PCWSTR, UINT32, HSTRING*);

// Where the Windows Runtime exists, ole32.dll has brought combase.dll in before this program's first line: nothing is
// loaded here, so no file of that name in another folder can be taken.
template <class Function>
HRESULT LookUp(const char* name, Function& function)
{
    const HMODULE module = GetModuleHandleW(L"combase.dll");
    if (module != nullptr)
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return function != nullptr ? S_OK : LastErrorResult();
}
} // namespace

HRESULT GetActivationFactory(std::wstring_view className, REFIID iid, void** factory)
{
    *factory = nullptr;
    RuntimeString name;
    if (const HRESULT hr = name.Create(className); FAILED(hr))
        return hr;
    RoGetActivationFactoryFunction pfnRoGetActivationFactory = nullptr;
    if (const HRESULT hr = LookUp("RoGetActivationFactory", pfnRoGetActivationFactory); FAILED(hr))
        return hr;
    return RequireObject(pfnRoGetActivationFactory(name.Get(), iid, factory), *factory);
}

RuntimeString::~RuntimeString()
{
    if (m_hString != nullptr)
        m_pfnWindowsDeleteString(m_hString);
}

HRESULT RuntimeString::Create(std::wstring_view text)
{
    WindowsCreateStringFunction pfnWindowsCreateString = nullptr;
    if (const HRESULT hr = LookUp("WindowsCreateString", pfnWindowsCreateString); FAILED(hr))
        return hr;
    // Looked up before there is anything to delete: a string that could not be deleted is never made.
    if (const HRESULT hr = LookUp("WindowsDeleteString", m_pfnWindowsDeleteString); FAILED(hr))
        return hr;
    return pfnWindowsCreateString(text.data(), static_cast<UINT32>(text.size()), &m_hString);
}
} // namespace WindowsRuntime

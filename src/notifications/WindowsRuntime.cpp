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
// Null, with the last error, when there is no such function.
template <class Function>
Function LookUp(const char* name)
{
    const HMODULE module = GetModuleHandleW(L"combase.dll");
    if (module == nullptr)
        return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}
} // namespace

HRESULT GetActivationFactory(std::wstring_view className, REFIID iid, void** factory)
{
    *factory = nullptr;
    RuntimeString name;
    if (const HRESULT hr = name.Create(className); FAILED(hr))
        return hr;
    const auto pfnRoGetActivationFactory = LookUp<RoGetActivationFactoryFunction>("RoGetActivationFactory");
    if (pfnRoGetActivationFactory == nullptr)
        return LastErrorResult();
    return RequireObject(pfnRoGetActivationFactory(name.Get(), iid, factory), *factory);
}

RuntimeString::~RuntimeString()
{
    if (m_hString != nullptr)
        m_pfnWindowsDeleteString(m_hString);
}

HRESULT RuntimeString::Create(std::wstring_view text)
{
    const auto pfnWindowsCreateString = LookUp<WindowsCreateStringFunction>("WindowsCreateString");
    if (pfnWindowsCreateString == nullptr)
        return LastErrorResult();
    // Looked up before there is anything to delete: a string that could not be deleted is never made.
    m_pfnWindowsDeleteString = LookUp<decltype(m_pfnWindowsDeleteString)>("WindowsDeleteString");
    if (m_pfnWindowsDeleteString == nullptr)
        return LastErrorResult();
    return pfnWindowsCreateString(text.data(), static_cast<UINT32>(text.size()), &m_hString);
}
} // namespace WindowsRuntime

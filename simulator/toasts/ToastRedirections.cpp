#include "simulator/toasts/ToastRedirections.h"

#include "simulator/model/Text.h"
#include "simulator/toasts/RuntimeObject.h"
#include "simulator/toasts/ToastActivation.h"
#include "simulator/toasts/ToastFactories.h"

namespace Simulator
{
namespace
{
struct RuntimeFunctions
{
    decltype(RoGetActivationFactory)* m_pfnGetFactory = nullptr;
    decltype(WindowsCreateString)* m_pfnCreateString = nullptr;
    decltype(WindowsCreateStringReference)* m_pfnCreateReference = nullptr;
};

const RuntimeFunctions& Real()
{
    static const RuntimeFunctions functions = []
    {
        RuntimeFunctions found;
        if (HMODULE combase = LoadLibraryExW(L"combase.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32); combase != nullptr)
        {
            const auto find = [combase](const char* name)
            { return reinterpret_cast<void*>(GetProcAddress(combase, name)); };
            found.m_pfnGetFactory = reinterpret_cast<decltype(RoGetActivationFactory)*>(find("RoGetActivationFactory"));
            found.m_pfnCreateString = reinterpret_cast<decltype(WindowsCreateString)*>(find("WindowsCreateString"));
            found.m_pfnCreateReference =
                reinterpret_cast<decltype(WindowsCreateStringReference)*>(find("WindowsCreateStringReference"));
        }
        return found;
    }();
    return functions;
}

bool Prepare()
{
    return SUCCEEDED(RuntimeText::Prepare()) && Real().m_pfnGetFactory != nullptr;
}

bool IsToastClass(std::wstring_view name)
{
    return name == ToastNotificationManager::RuntimeClassName || name == ToastNotificationFactory::RuntimeClassName;
}

HRESULT WINAPI GetFactory(HSTRING classId, REFIID iid, void** factory)
{
    const std::wstring_view name = RuntimeText::View(classId);
    HRESULT hr = BeginCall("RoGetActivationFactory", factory, {{"class", Narrow(name)}});
    if (FAILED(hr))
        return hr;
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    if (CoGetApartmentType(&type, &qualifier) == CO_E_NOTINITIALIZED)
        return CO_E_NOTINITIALIZED;
    if (!IsToastClass(name))
        return Real().m_pfnGetFactory(classId, iid, factory);
    IActivationFactory* found = nullptr;
    hr = GetToastActivationFactory(classId, &found);
    if (FAILED(hr))
        return hr;
    hr = found->QueryInterface(iid, factory);
    found->Release();
    return hr;
}

HRESULT WINAPI CreateString(LPCWSTR text, UINT32 length, HSTRING* string)
{
    const HRESULT hr = BeginCall("WindowsCreateString", string);
    if (FAILED(hr) || Real().m_pfnCreateString == nullptr)
        return FAILED(hr) ? hr : E_NOTIMPL;
    return Real().m_pfnCreateString(text, length, string);
}

HRESULT WINAPI CreateReference(LPCWSTR text, UINT32 length, HSTRING_HEADER* header, HSTRING* string)
{
    const HRESULT hr = BeginCall("WindowsCreateStringReference", string);
    if (FAILED(hr) || Real().m_pfnCreateReference == nullptr)
        return FAILED(hr) ? hr : E_NOTIMPL;
    return Real().m_pfnCreateReference(text, length, header, string);
}
} // namespace

ToastRedirections::ToastRedirections() : ToastRedirections(Prepare()) {}

ToastRedirections::ToastRedirections(bool /*prepared*/)
    : m_factory("RoGetActivationFactory", &GetFactory), m_createString("WindowsCreateString", &CreateString),
      m_createReference("WindowsCreateStringReference", &CreateReference)
{
}
} // namespace Simulator

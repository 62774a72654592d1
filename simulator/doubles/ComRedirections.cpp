#include "simulator/doubles/ComRedirections.h"

#include "simulator/doubles/DoubleClasses.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/RealFunctions.h"
#include "simulator/doubles/Refusals.h"
#include "simulator/model/CallPlan.h"

#include <atomic>

namespace Simulator
{
namespace
{
std::atomic<Activation> g_activation = Activation::InProcess;

const RealFunctions& Real()
{
    return RealFunctions::Instance();
}

HRESULT CreateInProcess(const DoubleClass& doubleClass, IUnknown* outer, DWORD context, REFIID iid, void** object)
{
    if ((context & doubleClass.m_dwContext) == 0)
        return REGDB_E_CLASSNOTREG;
    void* factory = nullptr;
    if (const HRESULT hr = GetDoubleClassObject(doubleClass.m_classId, IID_IClassFactory, &factory); FAILED(hr))
        return hr;
    auto* classFactory = static_cast<IClassFactory*>(factory);
    const HRESULT hr = classFactory->CreateInstance(outer, iid, object);
    classFactory->Release();
    return hr;
}

HRESULT WINAPI PlannedCoInitialize(LPVOID reserved)
{
    const HRESULT hr = CallPlan::Instance().Enter("CoInitialize", {{"reserved", reserved != nullptr}});
    return FAILED(hr) ? hr : Real().CoInitialize(reserved);
}

HRESULT WINAPI PlannedCoInitializeEx(LPVOID reserved, DWORD flags)
{
    const HRESULT hr =
        CallPlan::Instance().Enter("CoInitializeEx", {{"reserved", reserved != nullptr}, {"flags", flags}});
    return FAILED(hr) ? hr : Real().CoInitializeEx(reserved, flags);
}

void WINAPI JournalledCoUninitialize()
{
    // It cannot fail.
    static_cast<void>(CallPlan::Instance().Enter("CoUninitialize"));
    Real().CoUninitialize();
}

HRESULT WINAPI PlannedCoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                           SOLE_AUTHENTICATION_SERVICE* list, void* reserved1,
                                           DWORD authenticationLevel, DWORD impersonationLevel, void* identities,
                                           DWORD capabilities, void* reserved2)
{
    const HRESULT hr = CallPlan::Instance().Enter("CoInitializeSecurity",
                                                  {{"descriptor", descriptor != nullptr},
                                                   {"services", services},
                                                   {"list", list != nullptr},
                                                   {"authentication-level", authenticationLevel},
                                                   {"impersonation-level", impersonationLevel},
                                                   {"identities", identities != nullptr},
                                                   {"capabilities", capabilities},
                                                   {"reserved", reserved1 != nullptr || reserved2 != nullptr}});
    return FAILED(hr) ? hr
                      : Real().CoInitializeSecurity(descriptor, services, list, reserved1, authenticationLevel,
                                                    impersonationLevel, identities, capabilities, reserved2);
}

HRESULT WINAPI PlannedCoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    const DoubleClass* doubleClass = FindDoubleClass(classId);
    nlohmann::json details = {{"clsid", GuidText(classId)},
                              {"context", context},
                              {"iid", GuidText(iid)},
                              {"aggregated", outer != nullptr},
                              {"apartment", ApartmentText()}};
    if (doubleClass != nullptr)
        details["class"] = doubleClass->m_pszName;
    const HRESULT hr = CallPlan::Instance().Enter("CoCreateInstance", std::move(details));
    if (object == nullptr)
        return FirstFailure(hr, E_POINTER);
    *object = nullptr;
    if (FAILED(hr))
        return hr;
    if (doubleClass == nullptr)
        return Real().CoCreateInstance(classId, outer, context, iid, object);
    if (ApartmentText() == "none")
        return CO_E_NOTINITIALIZED;
    if (!IsRegistered(*doubleClass))
        return REGDB_E_CLASSNOTREG;
    return g_activation == Activation::Registry ? Real().CoCreateInstance(classId, outer, context, iid, object)
                                                : CreateInProcess(*doubleClass, outer, context, iid, object);
}

HRESULT WINAPI PlannedCLSIDFromProgID(LPCOLESTR progId, LPCLSID classId)
{
    const std::wstring_view text = progId != nullptr ? progId : L"";
    const HRESULT hr = CallPlan::Instance().Enter("CLSIDFromProgID", {{"progid", Narrow(text)}});
    const DoubleClass* doubleClass = FindDoubleClass(text);
    if (classId == nullptr)
        return FirstFailure(hr, E_INVALIDARG);
    if (FAILED(hr) || (doubleClass != nullptr && !IsRegistered(*doubleClass)))
    {
        *classId = CLSID_NULL;
        return FirstFailure(hr, CO_E_CLASSSTRING);
    }
    if (doubleClass == nullptr || g_activation == Activation::Registry)
        return Real().CLSIDFromProgID(progId, classId);
    *classId = doubleClass->m_classId;
    return S_OK;
}

HRESULT WINAPI PlannedOleRun(LPUNKNOWN object)
{
    const HRESULT hr = CallPlan::Instance().Enter("OleRun");
    return FAILED(hr) ? hr : Real().OleRun(object);
}

HRESULT WINAPI PlannedCoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorisation, OLECHAR* principal,
                                        DWORD authenticationLevel, DWORD impersonationLevel,
                                        RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities)
{
    const HRESULT hr = CallPlan::Instance().Enter(
        "CoSetProxyBlanket",
        {{"authentication", authentication},
         {"authorisation", authorisation},
         {"principal", principal != nullptr ? nlohmann::json(Narrow(principal)) : nlohmann::json()},
         {"authentication-level", authenticationLevel},
         {"impersonation-level", impersonationLevel},
         {"identity", identity != nullptr},
         {"capabilities", capabilities}});
    return FAILED(hr) ? hr
                      : Real().CoSetProxyBlanket(proxy, authentication, authorisation, principal, authenticationLevel,
                                                 impersonationLevel, identity, capabilities);
}

HRESULT WINAPI PlannedCoMarshalInterThreadInterfaceInStream(REFIID iid, LPUNKNOWN object, LPSTREAM* stream)
{
    const HRESULT hr = CallPlan::Instance().Enter("CoMarshalInterThreadInterfaceInStream",
                                                  {{"iid", GuidText(iid)}, {"apartment", ApartmentText()}});
    if (SUCCEEDED(hr))
        return Real().CoMarshalInterThreadInterfaceInStream(iid, object, stream);
    if (stream != nullptr)
        *stream = nullptr;
    return hr;
}

HRESULT WINAPI PlannedCoGetInterfaceAndReleaseStream(LPSTREAM stream, REFIID iid, LPVOID* object)
{
    const HRESULT hr = CallPlan::Instance().Enter("CoGetInterfaceAndReleaseStream",
                                                  {{"iid", GuidText(iid)}, {"apartment", ApartmentText()}});
    const HRESULT result = Real().CoGetInterfaceAndReleaseStream(stream, iid, object);
    if (SUCCEEDED(hr))
        return result;
    // A failing call too takes the stream and what was marshalled into it.
    if (SUCCEEDED(result))
    {
        static_cast<IUnknown*>(*object)->Release();
        *object = nullptr;
    }
    return hr;
}

template <class Function>
void Redirect(std::deque<ImportRedirection>& redirections, HMODULE module, const char* name, Function* replacement)
{
    redirections.emplace_back(module, name, reinterpret_cast<void*>(replacement));
}
} // namespace

ComRedirections::ComRedirections(Activation activation, HMODULE module)
{
    g_activation = activation;
    Redirect<decltype(CoInitialize)>(m_lstRedirections, module, "CoInitialize", &PlannedCoInitialize);
    Redirect<decltype(CoInitializeEx)>(m_lstRedirections, module, "CoInitializeEx", &PlannedCoInitializeEx);
    Redirect<decltype(CoUninitialize)>(m_lstRedirections, module, "CoUninitialize", &JournalledCoUninitialize);
    Redirect<decltype(CoInitializeSecurity)>(m_lstRedirections, module, "CoInitializeSecurity",
                                             &PlannedCoInitializeSecurity);
    Redirect<decltype(CoCreateInstance)>(m_lstRedirections, module, "CoCreateInstance", &PlannedCoCreateInstance);
    Redirect<decltype(CLSIDFromProgID)>(m_lstRedirections, module, "CLSIDFromProgID", &PlannedCLSIDFromProgID);
    Redirect<decltype(OleRun)>(m_lstRedirections, module, "OleRun", &PlannedOleRun);
    Redirect<decltype(CoSetProxyBlanket)>(m_lstRedirections, module, "CoSetProxyBlanket", &PlannedCoSetProxyBlanket);
    Redirect<decltype(CoMarshalInterThreadInterfaceInStream)>(m_lstRedirections, module,
                                                              "CoMarshalInterThreadInterfaceInStream",
                                                              &PlannedCoMarshalInterThreadInterfaceInStream);
    Redirect<decltype(CoGetInterfaceAndReleaseStream)>(m_lstRedirections, module, "CoGetInterfaceAndReleaseStream",
                                                       &PlannedCoGetInterfaceAndReleaseStream);
}

ComRedirections::~ComRedirections()
{
    while (!m_lstRedirections.empty())
        m_lstRedirections.pop_back();
}
} // namespace Simulator

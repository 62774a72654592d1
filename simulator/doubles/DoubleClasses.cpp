#include "simulator/doubles/DoubleClasses.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/PlixCommandDouble.h"
#include "simulator/doubles/PlixNotificationDouble.h"
#include "simulator/doubles/UnsecuredApartmentDouble.h"
#include "simulator/doubles/WbemLocatorDouble.h"
#include "simulator/model/Facts.h"

#include <algorithm>

namespace Simulator
{
namespace
{
template <class Double>
HRESULT Make(REFIID iid, void** object)
{
    return MakeDouble<Double>(iid, object);
}
} // namespace

const std::vector<DoubleClass>& DoubleClasses()
{
    // Never freed: classes are asked for until the process is gone.
    static const auto& classes = *new std::vector<DoubleClass>{
        {PlixCommandClassId, "PlixCommand", "/platform/registered", CLSCTX_INPROC_SERVER, nullptr,
         &Make<PlixCommandDouble>},
        {PlixNotificationClassId, "PlixNotification", "/notification/registered", CLSCTX_INPROC_SERVER,
         PlixNotificationProgId, &Make<PlixNotificationDouble>},
        {WbemLocatorClassId, "WbemLocator", "/wmi/registered", CLSCTX_INPROC_SERVER, nullptr, &Make<WbemLocatorDouble>},
        {UnsecuredApartmentClassId, "UnsecuredApartment", "/unsecured-apartment/registered", CLSCTX_LOCAL_SERVER,
         nullptr, &Make<UnsecuredApartmentDouble>},
    };
    return classes;
}

const DoubleClass* FindDoubleClass(REFCLSID classId)
{
    const auto& classes = DoubleClasses();
    const auto found = std::ranges::find(classes, classId, &DoubleClass::m_classId);
    return found != classes.end() ? &*found : nullptr;
}

const DoubleClass* FindDoubleClass(std::wstring_view progId)
{
    const auto& classes = DoubleClasses();
    const std::wstring text(progId);
    const auto found = std::ranges::find_if(
        classes, [&](const DoubleClass& entry)
        { return entry.m_pszProgId != nullptr && _wcsicmp(entry.m_pszProgId, text.c_str()) == 0; });
    return found != classes.end() ? &*found : nullptr;
}

bool IsRegistered(const DoubleClass& doubleClass)
{
    return Facts::Instance().Get(doubleClass.m_pszFact) != false;
}

HRESULT GetDoubleClassObject(REFCLSID classId, REFIID iid, void** object)
{
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    const DoubleClass* doubleClass = FindDoubleClass(classId);
    if (doubleClass == nullptr || !IsRegistered(*doubleClass))
        return CLASS_E_CLASSNOTAVAILABLE;
    return MakeDouble<ClassFactoryDouble>(iid, object, doubleClass->m_pszName, doubleClass->m_pfnMaker);
}

std::vector<RegistryEntry> RegistryEntries(std::wstring_view dllPath)
{
    std::vector<RegistryEntry> entries;
    for (const DoubleClass& entry : DoubleClasses())
    {
        if ((entry.m_dwContext & CLSCTX_INPROC_SERVER) == 0)
            continue;
        const std::wstring classId = Wide(GuidText(entry.m_classId));
        const std::wstring server = L"Software\\Classes\\CLSID\\" + classId + L"\\InprocServer32";
        entries.push_back({server, L"", std::wstring(dllPath)});
        entries.push_back({server, L"ThreadingModel", L"Both"});
        if (entry.m_pszProgId != nullptr)
            entries.push_back({L"Software\\Classes\\" + std::wstring(entry.m_pszProgId) + L"\\CLSID", L"", classId});
    }
    return entries;
}
} // namespace Simulator

#include "simulator/doubles/ClassFactoryDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/Refusals.h"
#include "simulator/model/CallPlan.h"

namespace Simulator
{
ClassFactoryDouble::ClassFactoryDouble(const char* name, Maker maker)
    : ComDouble("ClassFactory"), m_pszName(name), m_pfnMaker(maker)
{
}

HRESULT ClassFactoryDouble::CreateInstance(IUnknown* outer, REFIID iid, void** object)
{
    const HRESULT hr = CallPlan::Instance().Enter("IClassFactory::CreateInstance",
                                                  {{"class", m_pszName}, {"iid", GuidText(iid)}}, "com");
    if (object == nullptr)
        return FirstFailure(hr, E_POINTER);
    *object = nullptr;
    if (FAILED(hr))
        return hr;
    return outer != nullptr ? CLASS_E_NOAGGREGATION : m_pfnMaker(iid, object);
}

HRESULT ClassFactoryDouble::LockServer(WINBOOL)
{
    return S_OK;
}
} // namespace Simulator

#pragma once

#include "simulator/doubles/ComDouble.h"

#include <unknwn.h>

namespace Simulator
{
// Makes objects of one class of the simulated machine. CreateInstance is journalled as "com".
class ClassFactoryDouble final : public ComDouble<IClassFactory>
{
public:
    using Maker = HRESULT (*)(REFIID iid, void** object);

    // name: how the journal calls the class; it must outlive the factory.
    ClassFactoryDouble(const char* name, Maker maker);

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(WINBOOL locked) override;

private:
    const char* m_pszName;
    Maker m_pfnMaker;
};
} // namespace Simulator

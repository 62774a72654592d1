#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/Refusals.h"

#include <windows.h>

#include <wbemcli.h>

namespace Simulator
{
// The methods of IWbemServices that the product has no use for: journalled, E_NOTIMPL.
class WbemServicesBase : public ComDouble<IWbemServices, IClientSecurity>
{
public:
    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**,
                                            IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::OpenNamespace");
    }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override
    {
        return NotImplemented("IWbemServices::QueryObjectSink");
    }
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject**, IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::GetObject");
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::GetObjectAsync");
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::PutClass");
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::PutClassAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::DeleteClass");
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::DeleteClassAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override
    {
        return NotImplemented("IWbemServices::CreateClassEnum");
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::CreateClassEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::PutInstance");
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::PutInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::DeleteInstance");
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::DeleteInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override
    {
        return NotImplemented("IWbemServices::CreateInstanceEnum");
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::CreateInstanceEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::ExecQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject**) override
    {
        return NotImplemented("IWbemServices::ExecNotificationQuery");
    }
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                         IWbemClassObject**, IWbemCallResult**) override
    {
        return NotImplemented("IWbemServices::ExecMethod");
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override
    {
        return NotImplemented("IWbemServices::ExecMethodAsync");
    }

protected:
    using ComDouble::ComDouble;
};
} // namespace Simulator

#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/Refusals.h"

#include <windows.h>

#include <wbemcli.h>

namespace Simulator
{
// The methods of IWbemClassObject that the product has no use for: journalled, E_NOTIMPL.
class WbemClassObjectBase : public ComDouble<IWbemClassObject>
{
public:
    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override
    {
        return NotImplemented("IWbemClassObject::GetQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override
    {
        return NotImplemented("IWbemClassObject::Put");
    }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return NotImplemented("IWbemClassObject::Delete"); }
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override
    {
        return NotImplemented("IWbemClassObject::GetNames");
    }
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override
    {
        return NotImplemented("IWbemClassObject::BeginEnumeration");
    }
    HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override
    {
        return NotImplemented("IWbemClassObject::Next");
    }
    HRESULT STDMETHODCALLTYPE EndEnumeration() override { return NotImplemented("IWbemClassObject::EndEnumeration"); }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override
    {
        return NotImplemented("IWbemClassObject::GetPropertyQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return NotImplemented("IWbemClassObject::Clone"); }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override
    {
        return NotImplemented("IWbemClassObject::GetObjectText");
    }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override
    {
        return NotImplemented("IWbemClassObject::SpawnDerivedClass");
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override
    {
        return NotImplemented("IWbemClassObject::SpawnInstance");
    }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override
    {
        return NotImplemented("IWbemClassObject::CompareTo");
    }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override
    {
        return NotImplemented("IWbemClassObject::GetPropertyOrigin");
    }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override
    {
        return NotImplemented("IWbemClassObject::InheritsFrom");
    }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**) override
    {
        return NotImplemented("IWbemClassObject::GetMethod");
    }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override
    {
        return NotImplemented("IWbemClassObject::PutMethod");
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override
    {
        return NotImplemented("IWbemClassObject::DeleteMethod");
    }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override
    {
        return NotImplemented("IWbemClassObject::BeginMethodEnumeration");
    }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override
    {
        return NotImplemented("IWbemClassObject::NextMethod");
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override
    {
        return NotImplemented("IWbemClassObject::EndMethodEnumeration");
    }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override
    {
        return NotImplemented("IWbemClassObject::GetMethodQualifierSet");
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override
    {
        return NotImplemented("IWbemClassObject::GetMethodOrigin");
    }

protected:
    using ComDouble::ComDouble;
};
} // namespace Simulator

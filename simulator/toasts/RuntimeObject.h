#pragma once

#include "simulator/model/CallPlan.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/toasts/RuntimeText.h"

#include <inspectable.h>
#include <objbase.h>

#include <atomic>
#include <string>

namespace Simulator
{
template <class... Interfaces>
struct InterfaceList
{
};

// What a method of a double does first: clears the place of its result, records the call and asks whether it works.
[[nodiscard]] inline HRESULT BeginCall(std::string_view call)
{
    return CallPlan::Instance().Enter(call);
}

template <class Result>
[[nodiscard]] HRESULT BeginCall(std::string_view call, Result* result,
                                nlohmann::json details = nlohmann::json::object())
{
    if (result == nullptr)
        return E_POINTER;
    *result = Result{};
    return CallPlan::Instance().Enter(call, std::move(details));
}

// Completes a class that implements its interfaces' own members to an agile object of the Windows Runtime with an
// honest reference count, which starts at 1. Class names its
//     ObjectName          under which it is counted and its QueryInterface is recorded
//     RuntimeClassName    what GetRuntimeClassName answers
//     PublicInterfaces    the first one is its identity
//     PrivateInterfaces   for the doubles among themselves, never recorded
template <class Class>
class RuntimeObject final : public Class
{
public:
    template <class... Args>
    explicit RuntimeObject(Args&&... args) : Class(std::forward<Args>(args)...), m_live(Class::ObjectName)
    {
    }

    ULONG WINAPI AddRef() override { return ++m_nReferences; }

    ULONG WINAPI Release() override
    {
        const ULONG left = --m_nReferences;
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT WINAPI QueryInterface(REFIID iid, void** object) override
    {
        if (object == nullptr)
            return E_POINTER;
        *object = nullptr;
        void* found = Find(iid, typename Class::PrivateInterfaces{});
        if (found == nullptr && IsIdentity(iid))
            found = Identity(typename Class::PublicInterfaces{});
        if (found == nullptr)
        {
            found = Find(iid, typename Class::PublicInterfaces{});
            if (found == nullptr)
                return E_NOINTERFACE;
            if (const HRESULT hr = BeginCall(std::string(Class::ObjectName) + "::QueryInterface"); FAILED(hr))
                return hr;
        }
        AddRef();
        *object = found;
        return S_OK;
    }

    HRESULT WINAPI GetIids(ULONG* count, IID** iids) override
    {
        if (count == nullptr || iids == nullptr)
            return E_POINTER;
        return CopyIids(*count, *iids, typename Class::PublicInterfaces{});
    }

    HRESULT WINAPI GetRuntimeClassName(HSTRING* name) override
    {
        return name == nullptr ? E_POINTER : RuntimeText::Create(Class::RuntimeClassName, name);
    }

    HRESULT WINAPI GetTrustLevel(TrustLevel* level) override
    {
        if (level == nullptr)
            return E_POINTER;
        *level = BaseTrust;
        return S_OK;
    }

private:
    ~RuntimeObject() = default;

    static bool IsIdentity(REFIID iid)
    {
        return iid == __uuidof(IUnknown) || iid == __uuidof(IInspectable) || iid == __uuidof(IAgileObject);
    }

    template <class First, class... Others>
    void* Identity(InterfaceList<First, Others...> /*list*/)
    {
        return static_cast<First*>(this);
    }

    template <class... Interfaces>
    void* Find([[maybe_unused]] REFIID iid, InterfaceList<Interfaces...> /*list*/)
    {
        void* found = nullptr;
        ((iid == __uuidof(Interfaces) ? static_cast<void>(found = static_cast<Interfaces*>(this)) : void()), ...);
        return found;
    }

    template <class... Interfaces>
    static HRESULT CopyIids(ULONG& count, IID*& iids, InterfaceList<Interfaces...> /*list*/)
    {
        const IID all[] = {__uuidof(Interfaces)...};
        count = 0;
        iids = static_cast<IID*>(CoTaskMemAlloc(sizeof(all)));
        if (iids == nullptr)
            return E_OUTOFMEMORY;
        for (const IID& iid : all)
            iids[count++] = iid;
        return S_OK;
    }

    std::atomic<ULONG> m_nReferences{1};
    LiveObject m_live;
};

// A new object, handed out as one of its interfaces.
template <class Class, class Interface, class... Args>
[[nodiscard]] HRESULT MakeObject(Interface** result, Args&&... args)
{
    *result = new RuntimeObject<Class>(std::forward<Args>(args)...);
    return S_OK;
}
} // namespace Simulator

#pragma once

#include "simulator/doubles/ObjectIdentity.h"

#include <unknwn.h>

#include <tuple>

namespace Simulator
{
// Base of a COM double that offers the given interfaces, IUnknown and IMarshal. Made with new and a count of 1.
template <class... Interfaces>
class ComDouble : public Interfaces...
{
public:
    ComDouble(const ComDouble&) = delete;
    ComDouble& operator=(const ComDouble&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (object == nullptr)
            return E_POINTER;
        *object = nullptr;
        if (HasInterface(iid))
        {
            if (const HRESULT hr = m_identity.EnterQuery(iid); FAILED(hr))
                return hr;
        }
        return Provide(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return m_identity.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG count = m_identity.Release(ReleaseDetails());
        if (count == 0)
            delete this;
        return count;
    }

    // QueryInterface past the plan: for other doubles.
    [[nodiscard]] HRESULT Provide(REFIID iid, void** object)
    {
        *object = nullptr;
        if (iid == IID_IMarshal)
            return m_identity.Marshaler(iid, object);
        *object = Locate(iid);
        if (*object == nullptr)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    // The interface without a reference of its own; null when the object does not have it.
    [[nodiscard]] void* Locate(REFIID iid)
    {
        void* found = nullptr;
        if (iid == IID_IUnknown)
            found = static_cast<First*>(this);
        else if (HasInterface(iid))
            (..., (iid == __uuidof(Interfaces) ? void(found = static_cast<Interfaces*>(this)) : void()));
        return found;
    }

protected:
    explicit ComDouble(std::string_view className) : m_identity(className, static_cast<First*>(this)) {}
    virtual ~ComDouble() = default;

    // Whether this object has the interface at all; constant for an object's life.
    [[nodiscard]] virtual bool Offers(REFIID) const { return true; }
    // What the journal says about each Release besides the count.
    [[nodiscard]] virtual nlohmann::json ReleaseDetails() { return nlohmann::json::object(); }

private:
    using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;

    [[nodiscard]] bool HasInterface(REFIID iid) const { return (... || (iid == __uuidof(Interfaces))) && Offers(iid); }

    ObjectIdentity m_identity;
};

// A new double as the interface that is asked for, with the caller's one reference; it ends at once without that
// interface.
template <class Double, class... Arguments>
[[nodiscard]] HRESULT MakeDouble(REFIID iid, void** object, Arguments&&... arguments)
{
    auto* made = new Double(std::forward<Arguments>(arguments)...);
    *object = made->Locate(iid);
    if (*object != nullptr)
        return S_OK;
    made->Release();
    return E_NOINTERFACE;
}
} // namespace Simulator

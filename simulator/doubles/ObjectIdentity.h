#pragma once

#include "simulator/model/LiveObjects.h"

#include <unknwn.h>

#include <atomic>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator
{
// What every COM double is apart from its interfaces: a class name, a number that tells it from its kind, a place among
// the live objects, an honest reference count that starts at 1, and the free-threaded marshaler, because Wine has no
// proxies for the interfaces that cross apartments.
class ObjectIdentity
{
public:
    // outer: the double's IUnknown, for the marshaler.
    ObjectIdentity(std::string_view className, IUnknown* outer);
    ObjectIdentity(const ObjectIdentity&) = delete;
    ObjectIdentity& operator=(const ObjectIdentity&) = delete;
    ~ObjectIdentity();

    [[nodiscard]] const std::string& ClassName() const noexcept { return m_strClassName; }

    // Each change is journalled (kind "reference", subject "<class>::AddRef" or "<class>::Release", details "object"
    // and the new "count"), unless JournalReferences(false) was called. details: what the double itself adds.
    ULONG AddRef();
    ULONG Release(nlohmann::json details = nlohmann::json::object());

    // The plan's decision on a QueryInterface for one of the double's own interfaces; call "<class>::QueryInterface",
    // journal kind "com".
    [[nodiscard]] HRESULT EnterQuery(REFIID iid);
    // IMarshal of the marshaler.
    [[nodiscard]] HRESULT Marshaler(REFIID iid, void** object);

    // For runs too long to remember each reference. On at the start; process-wide.
    static void JournalReferences(bool wanted);

private:
    std::string m_strClassName;
    LiveObject m_alive;
    unsigned m_nObject;
    std::atomic<ULONG> m_nReferences = 1;
    IUnknown* m_pMarshaler = nullptr; // the inner object, which this one owns
};

// The named classes in the order of each one's last Release since the journal was cleared, for instance
// {"UnsecuredApartmentStub", "UnsecuredApartment", "WbemLocator"}; a class that saw none is absent.
[[nodiscard]] std::vector<std::string> OrderOfLastReleases(const std::vector<std::string>& classNames);
} // namespace Simulator

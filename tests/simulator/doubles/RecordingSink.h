#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Simulator
{
// A sink as the product writes one: it accepts IUnknown and IWbemObjectSink, and leaves the pointer alone otherwise. It
// lives on the stack of a test, which sees its count.
class RecordingSink final : public IWbemObjectSink
{
public:
    struct Delivery
    {
        DWORD m_dwThreadId;
        std::string m_strApartment;
        std::vector<long> m_lstEventIds; // of each object; -1 for a null entry, -2 when it could not be read
    };

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_nReferences; }
    HRESULT STDMETHODCALLTYPE Indicate(LONG count, IWbemClassObject** objects) override;
    HRESULT STDMETHODCALLTYPE SetStatus(LONG flags, HRESULT result, BSTR text, IWbemClassObject* object) override;

    [[nodiscard]] ULONG References() const { return m_nReferences; }
    [[nodiscard]] std::vector<Delivery> Deliveries() const;
    // "flags:result", the result in hexadecimal.
    [[nodiscard]] std::vector<std::string> Statuses() const;
    // Ids of all objects of all deliveries.
    [[nodiscard]] std::vector<long> EventIds() const;

    // Called by each Indicate when it has recorded.
    std::function<HRESULT()> m_action = [] { return S_OK; };

private:
    std::atomic<ULONG> m_nReferences = 1;
    mutable std::mutex m_lock;
    std::vector<Delivery> m_lstDeliveries;
    std::vector<std::string> m_lstStatuses;
};
} // namespace Simulator

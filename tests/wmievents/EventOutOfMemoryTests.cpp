#include "platform/PlixCommand.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/AppDataFolder.h"
#include "tests/wmievents/HubProbe.h"
#include "tests/wmievents/PlainEvent.h"
#include "wmievents/WmiEventsState.h"

#include <comdef.h>
#include <roapi.h>

#include <gmock/gmock.h>

#include <functional>
#include <set>

using Notifications::OrvikWmiEvents::g_szPublicEventClass;
using Notifications::OrvikWmiEvents::PublicWMIEventSink;
using Notifications::OrvikWmiEvents::WmiEventSink;
using Simulator::Redirection;
using testing::Contains;
using Tests::HubProbe;

// Want of memory inside the handlers and the sinks: every allocation fails in turn. The simulated machine takes memory
// itself, so a small one of functions stands in its place.
namespace
{
// Has every interface that it is asked for and answers every command; it is never destroyed.
class StaticCommand final : public IPlixCommand
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Execute(BSTR command, VARIANT* output) override
    {
        const bool isStatus = std::wcscmp(command, L"SmartAdapter.Status") == 0;
        output->vt = isStatus ? VT_I4 : VT_BOOL;
        if (isStatus)
            output->lVal = 3;
        else
            output->boolVal = VARIANT_TRUE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ExecuteWithInput(BSTR, VARIANT, VARIANT*) override { return E_NOTIMPL; }
};

StaticCommand g_command;
unsigned g_nToasts;

// Commands and the notification component are there, the shell's link is not.
HRESULT WINAPI CreateStatic(REFCLSID classId, LPUNKNOWN, DWORD, REFIID, LPVOID* object)
{
    const bool isThere = classId == CLSID_PlixCommand || classId == CLSID_NULL;
    *object = isThere ? &g_command : nullptr;
    return isThere ? S_OK : REGDB_E_CLASSNOTREG;
}

HRESULT WINAPI NullClass(LPCOLESTR, LPCLSID classId)
{
    *classId = CLSID_NULL;
    return S_OK;
}

// As far as a toast comes here.
HRESULT WINAPI CountToast(HSTRING, REFIID, void** factory)
{
    ++g_nToasts;
    *factory = nullptr;
    return E_ACCESSDENIED;
}

HRESULT WINAPI RunAnything(LPUNKNOWN)
{
    return S_OK;
}

class EventOutOfMemoryTest : public testing::Test
{
protected:
    // Makes each allocation of the call fail in turn; no exception may come out. The records that were written so.
    static std::set<std::wstring> Sweep(const std::function<void()>& call)
    {
        std::set<std::wstring> records;
        for (std::size_t nth = 1;; ++nth)
        {
            TestSupport::ClearLog();
            bool bitten = false;
            {
                const AllocationFault fault(nth);
                EXPECT_NO_THROW(call()) << "allocation " << nth;
                bitten = AllocationFault::HasBitten();
            }
            if (!bitten)
            {
                EXPECT_GT(nth, 1u);
                return records;
            }
            for (const std::wstring& line : TestSupport::OperationalLines())
                records.insert(line.substr(line.rfind(L'|') + 1));
        }
    }

    Tests::AppDataFolder m_appData;
    Redirection<decltype(CoCreateInstance)> m_create{"CoCreateInstance", &CreateStatic};
    Redirection<decltype(CLSIDFromProgID)> m_progId{"CLSIDFromProgID", &NullClass};
    Redirection<decltype(OleRun)> m_run{"OleRun", &RunAnything};
    Redirection<decltype(RoGetActivationFactory)> m_toast{"RoGetActivationFactory", &CountToast};
    HubProbe m_hub;
    Tests::PlainEvent m_event;
};
} // namespace

TEST_F(EventOutOfMemoryTest, SmartAdapterHandler_LetsNothingOutAndTheNextEventIsShown)
{
    const auto records = Sweep([this] { m_hub.ProcessSmartAdapterEvent(); });
    EXPECT_THAT(records, Contains(L"Exception occurred when calling SmartAdapter.Status, [hr:0x8007000E]"));
    g_nToasts = 0;
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(g_nToasts, 1u);
}

TEST_F(EventOutOfMemoryTest, PublicHandler_LetsNothingOutAndTheNextEventIsShown)
{
    const CStringW eventClass = g_szPublicEventClass;
    _variant_t data(L"A description that is longer than what a string object holds in itself");
    const auto records = Sweep([&] { m_hub.ProcessWMIEvent(eventClass, &data); });
    EXPECT_THAT(records, Contains(L"Exception when call Popup. hr = 0x8007000E"));
    g_nToasts = 0;
    m_hub.ProcessWMIEvent(eventClass, &data);
    EXPECT_EQ(g_nToasts, 1u);
}

TEST_F(EventOutOfMemoryTest, Indicate_LetsNothingOutAndTheNextEventIsHandled)
{
    auto* bios = new WmiEventSink(&m_hub, HubProbe::BiosHandler());
    auto* shared = new PublicWMIEventSink(&m_hub, HubProbe::PublicHandler());
    IWbemClassObject* event = &m_event;
    for (IWbemObjectSink* sink : {static_cast<IWbemObjectSink*>(bios), static_cast<IWbemObjectSink*>(shared)})
    {
        unsigned lost = 0;
        static_cast<void>(Sweep(
            [&]
            {
                const HRESULT hr = sink->Indicate(1, &event);
                EXPECT_TRUE(hr == WBEM_S_NO_ERROR || hr == E_OUTOFMEMORY) << hr;
                lost += hr == E_OUTOFMEMORY;
            }));
        EXPECT_GT(lost, 0u);
        const std::size_t before = m_hub.Calls().size();
        EXPECT_EQ(sink->Indicate(1, &event), WBEM_S_NO_ERROR);
        EXPECT_EQ(m_hub.Calls().size(), before + 1);
        sink->Release();
    }
}

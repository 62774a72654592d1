#include "shared/LogLevel.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/StaticCommand.h"
#include "tests/wmievents/UsbCTest.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>

using Notifications::OrvikWmiEvents::COrvikWmiEvents;
using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::WmiEventSource;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace Tests
{
namespace
{
class UsbCRegistrationTest : public UsbCTest
{
protected:
    HRESULT Register() { return m_hub.RegisterUSBCWMIEvent(L"C:\\Orvik.ico"); }

    // The registration's only records and result; nothing was subscribed.
    void ExpectFailure(HRESULT hr, const std::wstring& line, const std::wstring& result)
    {
        EXPECT_EQ(Register(), hr);
        EXPECT_THAT(LogLines(Registration),
                    ElementsAre(L"TraceIn|", L"Information|" + line, L"TraceOut|hr: " + result));
        EXPECT_EQ(WmiEventSource::SubscriptionCount(), 0u);
    }
};

// No step of a subscription raises this code by itself: a call on the way does it here.
HRESULT WINAPI RaiseInvalidCommand(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, RPC_AUTH_IDENTITY_HANDLE, DWORD)
{
    _com_issue_error(static_cast<HRESULT>(0x80000003));
    return E_UNEXPECTED;
}

// A command object that takes no memory, after which the n-th allocation as large as a subscription fails.
StaticCommand g_command;
decltype(CoCreateInstance)* g_pfnCreate;
std::size_t g_nth;
std::optional<AllocationFault> g_fault;

HRESULT WINAPI CreateStaticCommand(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    if (classId != CLSID_PlixCommand)
        return g_pfnCreate(classId, outer, context, iid, object);
    *object = &g_command;
    return S_OK;
}

HRESULT WINAPI FailFromHere(LPUNKNOWN)
{
    g_fault.emplace(g_nth, sizeof(Notifications::OrvikWmiEvents::WmiEvent));
    return S_OK;
}
} // namespace

TEST_F(UsbCRegistrationTest, Works_SubscribesSaysSoAndSendsNoCommand)
{
    ASSERT_EQ(Register(), S_OK);
    EXPECT_EQ(Details("IWbemServices::ExecNotificationQueryAsync")["query"],
              "SELECT * FROM orvikBEvnt WHERE EventID = 131073");
    EXPECT_THAT(LogLines(Registration),
                ElementsAre(L"TraceIn|", L"Verbose|Register for USB Type-C event passed.", L"TraceOut|hr: 0x00000000"));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
    EXPECT_FALSE(WasCalled("IPlixCommand::Execute"));
    EXPECT_FALSE(WasCalled("IPlixCommand::ExecuteWithInput"));
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
}

TEST_F(UsbCRegistrationTest, CommandObject_ComesBeforeWmi)
{
    ASSERT_EQ(Register(), S_OK);
    const auto calls = Calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0], "CoCreateInstance");
    EXPECT_EQ(Details("CoCreateInstance")["class"], "PlixCommand");
    EXPECT_EQ(calls[1], "OleRun");
}

TEST_F(UsbCRegistrationTest, Library_Missing_NoSubscriptionAndTheCreationsResult)
{
    Facts::Instance().Set("/platform/registered", false);
    ExpectFailure(REGDB_E_CLASSNOTREG, L"Create Plix instance cmd failed.  HR=0X80040154", L"0x80040154");
    EXPECT_FALSE(WasCalled("IWbemLocator::ConnectServer"));
}

TEST_F(UsbCRegistrationTest, Library_GivesNoObject_NoSubscription)
{
    const EmptyHandedCommand emptyHanded;
    StartWatching();
    ExpectFailure(S_OK, L"Create Plix instance cmd failed.  HR=0X0", L"0x00000000");
    EXPECT_FALSE(WasCalled("IWbemLocator::ConnectServer"));
}

TEST_F(UsbCRegistrationTest, Subscription_Refused_IsInformationAndItsCode)
{
    CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", Hr(WBEM_E_ACCESS_DENIED));
    ExpectFailure(Hr(WBEM_E_ACCESS_DENIED), L"Failed to register for USB Type-C event, [hr:0x80041003]", L"0x80041003");
    // The half-set subscription stays where it is.
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), 1);
}

TEST_F(UsbCRegistrationTest, Text_CannotBeAllocated_IsAnException)
{
    const FailingBstr noMemory(1);
    ExpectFailure(E_OUTOFMEMORY, L"Exception occurred when calling Platform.USBC.Configuration, [hr:0x8007000E]",
                  L"0x8007000E");
}

TEST_F(UsbCRegistrationTest, InvalidCommandCode_HasItsOwnText)
{
    const Simulator::Redirection<decltype(CoSetProxyBlanket)> raising("CoSetProxyBlanket", &RaiseInvalidCommand);
    ExpectFailure(static_cast<HRESULT>(0x80000003), L"Invalid Command Platform.USBC.Configuration. hr = 0x80000003",
                  L"0x80000003");
}

TEST_F(UsbCRegistrationTest, Again_EndsTheOldSubscriptionBeforeTheNewOneStarts)
{
    ASSERT_EQ(Register(), S_OK);
    StartWatching();
    ASSERT_EQ(Register(), S_OK);
    auto calls = Calls();
    std::erase_if(calls, [](const std::string& call) { return !call.starts_with("IWbem"); });
    EXPECT_THAT(calls, ElementsAre("IWbemServices::CancelAsyncCall", "IWbemLocator::ConnectServer",
                                   "IWbemServices::ExecNotificationQueryAsync"));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
    EXPECT_EQ(LiveObjects::Count("WbemServices"), 1);
    EXPECT_THAT(WmiEventSource::Raise(Event(2)), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(UsbCRegistrationTest, Again_LibraryIsGone_OldSubscriptionStays)
{
    ASSERT_EQ(Register(), S_OK);
    Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(Register(), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
}

TEST_F(UsbCRegistrationTest, Again_NoMemoryForTheNewSubscription_OldOneGoesOn)
{
    ASSERT_EQ(Register(), S_OK);
    {
        const Simulator::Redirection<decltype(CoCreateInstance)> create("CoCreateInstance", &CreateStaticCommand);
        g_pfnCreate = create.Original();
        const Simulator::Redirection<decltype(OleRun)> run("OleRun", &FailFromHere);
        bool isRaised = false;
        // The first allocations are those of records, which are left out then.
        for (g_nth = 1; g_nth < 100 && !isRaised; ++g_nth)
        {
            StartWatching();
            try
            {
                EXPECT_EQ(Register(), S_OK);
            }
            catch (const std::bad_alloc&)
            {
                isRaised = true;
            }
            g_fault.reset();
        }
        EXPECT_TRUE(isRaised);
    }
    // It was not even touched.
    EXPECT_THAT(LogLines("Notifications::OrvikWmiEvents::WmiEvent::Unregister"), IsEmpty());
    EXPECT_FALSE(WasCalled("IWbemServices::CancelAsyncCall"));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
    EXPECT_THAT(WmiEventSource::Raise(Event(2)), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
    ASSERT_EQ(Register(), S_OK);
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
}

TEST_F(UsbCRegistrationTest, AfterAFailure_Works)
{
    CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(Register(), Hr(WBEM_E_ACCESS_DENIED));
    ASSERT_EQ(Register(), S_OK);
    EXPECT_THAT(WmiEventSource::Raise(Event(2)), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(UsbCRegistrationTest, Destruction_CancelsAdapterThenUsbCThenPublic)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    ASSERT_EQ(hub->RegisterGPIOWMIEvent(), S_OK);
    ASSERT_EQ(hub->RegisterUSBCWMIEvent(L""), S_OK);
    ASSERT_EQ(hub->RegisterSmartAdapterEvent(L""), S_OK);
    StartWatching();
    hub.reset();
    std::vector<nlohmann::json> cancelled;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "cancelled")
            cancelled.push_back(entry.m_details.at("event-id"));
    }
    EXPECT_THAT(cancelled, ElementsAre(3, 131073, nullptr));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}
} // namespace Tests

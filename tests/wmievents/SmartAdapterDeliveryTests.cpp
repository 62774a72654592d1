#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/redirect/ImportRedirection.h"
#include "simulator/toasts/ToastActivation.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/SmartAdapterTest.h"

#include <comdef.h>
#include <roapi.h>

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Redirection;
using Simulator::RunningDelivery;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
using TestSupport::SuppressPolicy;
namespace Level = Orvik::Shared::Level;

namespace
{
// The event on its way from the firmware to the screen.
class SmartAdapterDeliveryTest : public Tests::SmartAdapterTest
{
protected:
    SmartAdapterDeliveryTest() { EXPECT_EQ(m_hub.RegisterSmartAdapterEvent(L""), S_OK); }

    static Simulator::WmiEventBatch Event() { return {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}}; }

    // The next event's toast comes to nothing: the handler's own records say nothing of that.
    static void ExpectEndsQuietly()
    {
        StartWatching();
        EXPECT_THAT(Simulator::WmiEventSource::Raise(Event()), ElementsAre(S_OK));
        EXPECT_THAT(LogLines(Handler), ElementsAreArray(ShownRecords));
        EXPECT_THAT(Toasts(), IsEmpty());
    }

    static void ExpectNextIsShown()
    {
        EXPECT_THAT(Simulator::WmiEventSource::Raise(Event()), ElementsAre(S_OK));
        EXPECT_EQ(Toasts().size(), 1u);
    }
};

unsigned g_nFactories;

// Gives the first factory that is asked for; for each further one it says yes and gives nothing.
HRESULT WINAPI GiveOneFactory(HSTRING classId, REFIID iid, void** factory)
{
    *factory = nullptr;
    if (g_nFactories++ > 0)
        return S_OK;
    IActivationFactory* made = nullptr;
    if (const HRESULT hr = Simulator::GetToastActivationFactory(classId, &made); FAILED(hr))
        return hr;
    const HRESULT hr = made->QueryInterface(iid, factory);
    made->Release();
    return hr;
}

HRESULT WINAPI RaiseInstead(HSTRING, REFIID, void**)
{
    throw _com_error(static_cast<HRESULT>(0x80000003));
}
} // namespace

TEST_F(SmartAdapterDeliveryTest, Event_BecomesAToast)
{
    EXPECT_THAT(Simulator::WmiEventSource::Raise(Event()), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
    EXPECT_THAT(LogLines(Handler), ElementsAreArray(ShownRecords));
}

TEST_F(SmartAdapterDeliveryTest, Event_MakesNoShortcut)
{
    Simulator::WmiEventSource::Raise(Event());
    EXPECT_EQ(Toasts().size(), 1u);
    EXPECT_THAT(LogLines("DesktopToast::TryCreateShortcut"), IsEmpty());
}

TEST_F(SmartAdapterDeliveryTest, Toast_SuccessWithoutAFactory_EndsQuietlyAndTheNextEventIsShown)
{
    {
        g_nFactories = 0;
        const Redirection<decltype(RoGetActivationFactory)> emptyHanded("RoGetActivationFactory", &GiveOneFactory);
        ExpectEndsQuietly();
        EXPECT_EQ(g_nFactories, 2u);
    }
    ExpectNextIsShown();
}

TEST_F(SmartAdapterDeliveryTest, Toast_RaisesAnError_EndsQuietlyAndTheNextEventIsShown)
{
    {
        const Redirection<decltype(RoGetActivationFactory)> raising("RoGetActivationFactory", &RaiseInstead);
        ExpectEndsQuietly();
    }
    ExpectNextIsShown();
}

TEST_F(SmartAdapterDeliveryTest, Toast_Fails_EndsQuietlyAndTheNextEventIsShown)
{
    CallPlan::Instance().Fail("IToastNotifier::Show", E_FAIL);
    EXPECT_THAT(Simulator::WmiEventSource::Raise(Event()), ElementsAre(S_OK));
    EXPECT_THAT(LogLines(Handler), ElementsAreArray(ShownRecords));
    EXPECT_THAT(Toasts(), IsEmpty());
    ExpectNextIsShown();
}

TEST_F(SmartAdapterDeliveryTest, Events_AtTheSameTime_ShowAToastEach)
{
    Simulator::WmiEventSource::RaiseFromThreads(Event(), 4, 5);
    EXPECT_EQ(Toasts().size(), 20u);
}

TEST_F(SmartAdapterDeliveryTest, Events_BothInTheCommandAtOnce_ShowAToastEach)
{
    Facts::Instance().Set("/commands/SmartAdapter.Status/hang", true);
    StartWatching();
    RunningDelivery first(Event());
    RunningDelivery second(Event());
    for (int i = 0; i < 2000 && Commands().size() < 2; ++i)
        Sleep(5);
    EXPECT_THAT(Commands(), ElementsAre("SmartAdapter.Status", "SmartAdapter.Status"));
    EXPECT_FALSE(first.IsDone());
    EXPECT_FALSE(second.IsDone());
    EXPECT_THAT(Toasts(), IsEmpty());
    Facts::Instance().Set("/commands/SmartAdapter.Status/hang", false);
    EXPECT_THAT(first.Results(), ElementsAre(S_OK));
    EXPECT_THAT(second.Results(), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 2u);
}

TEST_F(SmartAdapterDeliveryTest, Event_WhileACommandHangs_TheNextOneIsHandled)
{
    Facts::Instance().Set("/commands/SmartAdapter.Status/hang", true);
    RunningDelivery hanging(Event());
    for (int i = 0; i < 2000 && Commands().size() < 2; ++i)
        Sleep(5);
    const SuppressPolicy suppress(L"SuppressSmartAdapterNotifications");
    Simulator::WmiEventSource::Raise(Event());
    EXPECT_TRUE(Logged(Level::Verbose, Handler, L"Notifications are suppressed"));
    EXPECT_FALSE(hanging.IsDone());
    Facts::Instance().Set("/commands/SmartAdapter.Status/hang", false);
    EXPECT_THAT(hanging.Results(), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
}

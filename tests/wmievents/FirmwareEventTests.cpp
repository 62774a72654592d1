#include "app/dialogs/MessageDialog.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/MachineTest.h"
#include "tests/wmievents/SmallMachine.h"

#include <comutil.h>

#include <gmock/gmock.h>

#include <limits>
#include <tuple>

using Notifications::OrvikWmiEvents::COrvikWmiEvents;
using Simulator::WmiEventSource;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::DialogCalls;
using Tests::NotedDialogs;
using Tests::OpenDialog;
using TestSupport::LogLines;

namespace
{
const std::wstring g_outdated =
    L"Your keyboard firmware is out of date. To ensure no functionality loss, please restart your "
    L"system to automatically update.";
const std::wstring g_disabled =
    L"Orvik Veritor's ability to detect intrusions has been disabled. This may have been due "
    L"to an unexpected hardware or software event in the system. Please save your work and reboot. "
    L"If this repeatedly occurs, please contact IT support. \r\n\r\n\r\nFor more information "
    L"please visit";

// The two handlers that show one message for one event number each.
struct MessageRow
{
    const char* m_pHandler;
    void (COrvikWmiEvents::*m_pfnProcess)(int, VARIANT*);
    int m_nEventId;
    UINT m_nString;
    const std::wstring& m_strText;
    LPCWSTR m_pIcon;
    int m_nKind;
};

const MessageRow g_rows[] = {{"Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessFirmwareEvent",
                              &COrvikWmiEvents::ProcessFirmwareEvent, 21, 515, g_outdated, IDI_INFORMATION, 4},
                             {"Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessFirmwareRuntimeEvent",
                              &COrvikWmiEvents::ProcessFirmwareRuntimeEvent, 83, 552, g_disabled, IDI_WARNING, 5}};

class FirmwareEventTest : public Tests::HubTest, public testing::WithParamInterface<MessageRow>
{
protected:
    FirmwareEventTest() { g_nLinkKind = -1; }

    void Process(int eventId, VARIANT* data) { (m_hub.*GetParam().m_pfnProcess)(eventId, data); }
    void Process() { Process(GetParam().m_nEventId, nullptr); }
};

std::vector<std::tuple<HINSTANCE, UINT, int>> g_lstLoaded;

int WINAPI NoString(HINSTANCE module, UINT id, LPWSTR, int capacity)
{
    g_lstLoaded.emplace_back(module, id, capacity);
    return 0;
}

// To note more of a dialog takes memory.
INT_PTR g_nShown = 0;

INT_PTR WINAPI CountDialog(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM)
{
    return ++g_nShown;
}
} // namespace

TEST_P(FirmwareEventTest, ItsEvent_ShowsTheMessageUntilItIsClosed)
{
    const DialogCalls calls;
    OpenDialog dialog([this] { Process(); });
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), GetParam().m_strText);
    EXPECT_EQ(dialog.KindIcon(),
              LoadImageW(nullptr, GetParam().m_pIcon, IMAGE_ICON, 32, 32, LR_SHARED | LR_DEFAULTSIZE));
    EXPECT_EQ(g_nLinkKind, -1);
    // The handler is still there.
    EXPECT_THAT(LogLines(GetParam().m_pHandler), ElementsAre(L"TraceIn|"));
    dialog.Close();
    EXPECT_THAT(LogLines(GetParam().m_pHandler), ElementsAre(L"TraceIn|", L"TraceOut|"));
    EXPECT_THAT(calls.Ends(), ElementsAre(0));
}

TEST_P(FirmwareEventTest, ItsEvent_OpensTheMessageDialogWithItsKind)
{
    const NotedDialogs dialogs;
    Process();
    const auto all = dialogs.All();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].m_hModule, nullptr);
    EXPECT_EQ(all[0].m_nTemplate, 102u);
    EXPECT_EQ(all[0].m_hwndOwner, nullptr);
    EXPECT_EQ(all[0].m_pfnProcedure, &MessageDialogProc);
    EXPECT_EQ(all[0].m_strText, GetParam().m_strText);
    EXPECT_EQ(all[0].m_nKind, GetParam().m_nKind);
}

TEST_P(FirmwareEventTest, Data_IsNotLookedAt)
{
    const NotedDialogs dialogs;
    _variant_t values[] = {_variant_t(),        _variant_t(0L),   _variant_t(1L),
                           _variant_t(L"text"), _variant_t(true), _variant_t(static_cast<BYTE>(9))};
    for (_variant_t& value : values)
        Process(GetParam().m_nEventId, &value);
    VARIANT damaged{};
    damaged.vt = static_cast<VARTYPE>(VT_BYREF | VT_ARRAY | VT_BSTR);
    Process(GetParam().m_nEventId, &damaged);
    Process(GetParam().m_nEventId, nullptr);
    EXPECT_EQ(dialogs.Count(), 8u);
}

TEST_P(FirmwareEventTest, OtherEvents_ShowNothing)
{
    const NotedDialogs dialogs;
    _variant_t data(1L);
    const int own = GetParam().m_nEventId;
    for (const int eventId : {own - 1, own + 1, -own, own + 0x10000, 0, 3, 20, 21, 33, 83, 131073, 131074,
                              std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
    {
        if (eventId != own)
            Process(eventId, &data);
    }
    EXPECT_EQ(dialogs.Count(), 0u);
    EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
}

TEST_P(FirmwareEventTest, MissingString_ShowsAnEmptyMessage)
{
    const NotedDialogs dialogs;
    g_lstLoaded.clear();
    const Simulator::Redirection<decltype(LoadStringW)> none("LoadStringW", &NoString);
    Process();
    EXPECT_THAT(g_lstLoaded, ElementsAre(std::tuple(nullptr, GetParam().m_nString, 2048)));
    ASSERT_EQ(dialogs.Count(), 1u);
    EXPECT_EQ(dialogs.All()[0].m_strText, L"");
}

TEST_P(FirmwareEventTest, DialogCannotBeShown_NobodyIsToldAndTheNextEventShowsIt)
{
    {
        const NotedDialogs refused(-1);
        Process();
        EXPECT_EQ(refused.Count(), 1u);
    }
    EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
    const OpenDialog dialog([this] { Process(); });
    EXPECT_EQ(dialog.Text(139), GetParam().m_strText);
}

TEST_P(FirmwareEventTest, Policies_DoNotSilenceIt)
{
    const TestSupport::SuppressPolicy all(L"SuppressAllNotifications");
    const NotedDialogs dialogs;
    Process();
    EXPECT_EQ(dialogs.Count(), 1u);
}

TEST_P(FirmwareEventTest, TwoAtOnce_BothAreShown)
{
    const DialogCalls calls;
    const OpenDialog first([this] { Process(); });
    const OpenDialog second([this] { Process(); });
    EXPECT_NE(first.Window(), second.Window());
    EXPECT_EQ(first.Text(139), GetParam().m_strText);
    EXPECT_EQ(second.Text(139), GetParam().m_strText);
    EXPECT_THAT(calls.Ends(), IsEmpty());
}

TEST_P(FirmwareEventTest, NoMemory_DialogIsShownAllTheSame)
{
    INT_PTR events = 0;
    g_nShown = 0;
    const Simulator::Redirection<decltype(DialogBoxParamW)> counted("DialogBoxParamW", &CountDialog);
    static_cast<void>(Tests::SweepAllocations(
        [&]
        {
            ++events;
            Process();
        }));
    EXPECT_EQ(g_nShown, events);
}

INSTANTIATE_TEST_SUITE_P(Handlers, FirmwareEventTest, testing::ValuesIn(g_rows),
                         [](const auto& test) { return std::to_string(test.param.m_nEventId); });

using FirmwareDeliveryTest = Tests::HubTest;

namespace
{
Simulator::WmiEventBatch Event(int eventId, const nlohmann::json& data)
{
    return {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", eventId}, {"EventData", data}}}};
}
} // namespace

TEST_F(FirmwareDeliveryTest, Event21_ShowsTheKeyboardsMessageOnTheDeliveringThread)
{
    ASSERT_EQ(m_hub.RegisterFirmwareWMIEvent(), S_OK);
    Simulator::DeliveryResults results;
    const DialogCalls calls;
    OpenDialog dialog([&] { results = WmiEventSource::RaiseHere(Event(21, 0)); });
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), g_outdated);
    EXPECT_EQ(dialog.Text(140), L"");
    EXPECT_THAT(results, IsEmpty());
    dialog.Close();
    EXPECT_THAT(results, ElementsAre(S_OK));
}

TEST_F(FirmwareDeliveryTest, Event21_WithAnyData_IsShown)
{
    ASSERT_EQ(m_hub.RegisterFirmwareWMIEvent(), S_OK);
    const NotedDialogs dialogs;
    for (const nlohmann::json& data : std::vector<nlohmann::json>{0, 1, -1, 2147483647})
        EXPECT_THAT(WmiEventSource::Raise(Event(21, data)), ElementsAre(S_OK));
    EXPECT_EQ(dialogs.Count(), 4u);
}

TEST_F(FirmwareDeliveryTest, Event33_OfTheRuntime_ShowsNothing)
{
    ASSERT_EQ(m_hub.RegisterFirmwareRuntimeWMIEvent(), S_OK);
    StartWatching();
    const NotedDialogs dialogs;
    EXPECT_THAT(WmiEventSource::Raise(Event(33, 1)), ElementsAre(S_OK));
    EXPECT_EQ(dialogs.Count(), 0u);
    // It did come.
    EXPECT_THAT(LogLines("Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessFirmwareRuntimeEvent"),
                ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(FirmwareDeliveryTest, Event83_InADeliveryOfTheRuntime_ShowsTheMessage)
{
    ASSERT_EQ(m_hub.RegisterFirmwareRuntimeWMIEvent(), S_OK);
    const NotedDialogs dialogs;
    auto delivery = Event(83, 0);
    delivery.m_nEventId = 33;
    EXPECT_THAT(WmiEventSource::Raise(delivery), ElementsAre(S_OK));
    ASSERT_EQ(dialogs.Count(), 1u);
    EXPECT_EQ(dialogs.All()[0].m_strText, g_disabled);
}

TEST_F(FirmwareDeliveryTest, ManyEvents_LeaveNoTextBehind)
{
    ASSERT_EQ(m_hub.RegisterFirmwareWMIEvent(), S_OK);
    const NotedDialogs dialogs;
    const TestSupport::BstrLedger ledger;
    const auto results = WmiEventSource::RaiseFromThreads(Event(21, 5), 4, 25);
    EXPECT_THAT(results, SizeIs(100));
    EXPECT_THAT(results, Each(S_OK));
    EXPECT_EQ(dialogs.Count(), 100u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

#include "app/dialogs/PrivacyPanelDialog.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"
#include "tests/app/system/TemporaryFolder.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/MachineTest.h"
#include "tests/wmievents/SmallMachine.h"

#include <comutil.h>

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <limits>

using Notifications::OrvikWmiEvents::COrvikWmiEvents;
using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::WmiEventSource;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NotedDialogs;
using Tests::OpenDialog;
using TestSupport::LogLines;

namespace
{
constexpr const char* Handler = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessPrivacyPanelEvent";
constexpr const wchar_t* Marker = L"IgnoreLumbraDialog.txt";

// The hub's flag is its first member.
bool MayShowNotice(const COrvikWmiEvents& hub)
{
    return *reinterpret_cast<const std::atomic<bool>*>(&hub);
}

class PrivacyPanelEventTest : public Tests::HubTest
{
protected:
    void Process(long data, int eventId = 20)
    {
        _variant_t value(data);
        m_hub.ProcessPrivacyPanelEvent(eventId, &value);
    }

    void Silence() const { m_folder.WriteFile(Marker, "true"); }
    void Reactivate() const { DeleteFileW((m_folder.Path() + Marker).c_str()); }

    TemporaryFolder m_folder;
};

Simulator::WmiEventBatch Event(const nlohmann::json& data)
{
    return {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 20}, {"EventData", data}}}};
}

std::vector<std::pair<std::wstring, std::wstring>> g_lstOpened;

errno_t RefuseToOpen(FILE** file, const wchar_t* name, const wchar_t* mode)
{
    g_lstOpened.emplace_back(name, mode);
    *file = nullptr;
    return EACCES;
}

// To note more of a dialog takes memory.
INT_PTR g_nShown = 0;

INT_PTR WINAPI CountDialog(HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM)
{
    return ++g_nShown;
}
} // namespace

TEST_F(PrivacyPanelEventTest, NotSupported_ShowsTheNoticeUntilItIsClosed)
{
    OpenDialog dialog([this] { Process(1); });
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), L"Your device does not support Orvik Lumbra.");
    EXPECT_EQ(dialog.Text(141), L"Do not display this message again.");
    EXPECT_EQ(dialog.KindIcon(), LoadImageW(nullptr, IDI_INFORMATION, IMAGE_ICON, 32, 32, LR_SHARED | LR_DEFAULTSIZE));
    EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|"));
    dialog.Close();
    EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(PrivacyPanelEventTest, NotSupported_OpensThePrivacyPanelDialog)
{
    const NotedDialogs dialogs;
    Process(1);
    const auto all = dialogs.All();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].m_hModule, nullptr);
    EXPECT_EQ(all[0].m_nTemplate, 142u);
    EXPECT_EQ(all[0].m_hwndOwner, nullptr);
    EXPECT_EQ(all[0].m_pfnProcedure, &PrivacyPanelDialogProc);
    EXPECT_EQ(all[0].m_strText, L"Your device does not support Orvik Lumbra.");
    EXPECT_EQ(all[0].m_nKind, 4);
}

TEST_F(PrivacyPanelEventTest, EventNumber_IsNotLookedAt)
{
    const NotedDialogs dialogs;
    for (const int eventId : {20, 0, 21, 33, -1, std::numeric_limits<int>::max()})
        Process(1, eventId);
    EXPECT_EQ(dialogs.Count(), 6u);
}

TEST_F(PrivacyPanelEventTest, TypeOfTheData_IsNotLookedAt)
{
    const NotedDialogs dialogs;
    VARIANT data{};
    for (const VARTYPE type : {VT_EMPTY, VT_UI4, VT_INT, VT_I4})
    {
        data.vt = type;
        data.lVal = 1;
        m_hub.ProcessPrivacyPanelEvent(20, &data);
    }
    EXPECT_EQ(dialogs.Count(), 4u);
}

TEST_F(PrivacyPanelEventTest, OtherData_ShowsNothingButUpdatesTheFlag)
{
    const NotedDialogs dialogs;
    for (const long data : {0L, 2L, -1L, 0x101L, 0x10000L, std::numeric_limits<long>::min()})
    {
        Silence();
        Process(data);
        EXPECT_FALSE(MayShowNotice(m_hub)) << data;
        Reactivate();
        Process(data);
        EXPECT_TRUE(MayShowNotice(m_hub)) << data;
    }
    EXPECT_EQ(dialogs.Count(), 0u);
    EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
}

TEST_F(PrivacyPanelEventTest, NoData_ShowsNothingButUpdatesTheFlag)
{
    const NotedDialogs dialogs;
    m_hub.ProcessPrivacyPanelEvent(20, nullptr);
    EXPECT_TRUE(MayShowNotice(m_hub));
    EXPECT_EQ(dialogs.Count(), 0u);
}

TEST_F(PrivacyPanelEventTest, Silenced_ShowsNothingUntilTheMarkerIsGone)
{
    const NotedDialogs dialogs;
    Silence();
    Process(1);
    EXPECT_EQ(dialogs.Count(), 0u);
    EXPECT_FALSE(MayShowNotice(m_hub));
    EXPECT_EQ(m_folder.ReadFile(Marker), "true");
    Reactivate();
    Process(1);
    EXPECT_EQ(dialogs.Count(), 1u);
    EXPECT_TRUE(MayShowNotice(m_hub));
}

TEST_F(PrivacyPanelEventTest, PersonChecksTheBox_NextEventShowsNothing)
{
    {
        const OpenDialog dialog([this] { Process(1); });
        SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
        dialog.Click(IDOK);
        EXPECT_TRUE(dialog.HasEnded());
    }
    EXPECT_EQ(m_folder.ReadFile(Marker), "true");
    const NotedDialogs dialogs;
    Process(1);
    EXPECT_EQ(dialogs.Count(), 0u);
}

TEST_F(PrivacyPanelEventTest, PersonChecksTheBoxOfOne_TheOtherStaysOpenAndALaterOneDoesNotCome)
{
    const OpenDialog first([this] { Process(1); });
    const OpenDialog second([this] { Process(1); });
    SendDlgItemMessageW(first.Window(), 141, BM_CLICK, 0, 0);
    EXPECT_EQ(second.Text(139), L"Your device does not support Orvik Lumbra.");
    const NotedDialogs dialogs;
    Process(1);
    EXPECT_EQ(dialogs.Count(), 0u);
}

TEST_F(PrivacyPanelEventTest, Marker_IsOpenedForReadingAndClosed)
{
    const NotedDialogs dialogs;
    Silence();
    Process(1);
    const unsigned handles = TestSupport::OpenHandleCount();
    for (int i = 0; i < 50; ++i)
        Process(1);
    EXPECT_EQ(TestSupport::OpenHandleCount(), handles);
    EXPECT_EQ(m_folder.OfferedRoom(), 260u);

    g_lstOpened.clear();
    const Simulator::Redirection<decltype(_wfopen_s)> refused("_wfopen_s", &RefuseToOpen);
    Process(0);
    EXPECT_THAT(g_lstOpened, ElementsAre(std::pair(m_folder.Path() + Marker, L"r")));
}

TEST_F(PrivacyPanelEventTest, Marker_CannotBeOpened_NoticeIsShown)
{
    const NotedDialogs dialogs;
    Silence();
    const Simulator::Redirection<decltype(_wfopen_s)> refused("_wfopen_s", &RefuseToOpen);
    Process(1);
    EXPECT_EQ(dialogs.Count(), 1u);
    EXPECT_TRUE(MayShowNotice(m_hub));
}

TEST_F(PrivacyPanelEventTest, NoTemporaryFolder_NoticeIsShown)
{
    const NotedDialogs dialogs;
    Silence();
    for (const DWORD length : {0u, 260u, 300u})
    {
        m_folder.AnswerLength(length);
        Process(1);
        EXPECT_TRUE(MayShowNotice(m_hub));
    }
    EXPECT_EQ(dialogs.Count(), 3u);
}

TEST_F(PrivacyPanelEventTest, DialogCannotBeShown_NobodyIsTold)
{
    const NotedDialogs refused(-1);
    Process(1);
    EXPECT_EQ(refused.Count(), 1u);
    EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
}

TEST_F(PrivacyPanelEventTest, NoMemory_NoticeIsShownAllTheSame)
{
    INT_PTR events = 0;
    g_nShown = 0;
    _variant_t data(1L);
    const Simulator::Redirection<decltype(DialogBoxParamW)> counted("DialogBoxParamW", &CountDialog);
    static_cast<void>(Tests::SweepAllocations(
        [&]
        {
            ++events;
            m_hub.ProcessPrivacyPanelEvent(20, &data);
        }));
    EXPECT_EQ(g_nShown, events);
}

TEST_F(PrivacyPanelEventTest, Delivered_ShowsTheNoticeOnTheDeliveringThread)
{
    ASSERT_EQ(m_hub.RegisterPrivacyPanelWMIEvent(), S_OK);
    Simulator::DeliveryResults results;
    OpenDialog dialog([&] { results = WmiEventSource::RaiseHere(Event(1)); });
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), L"Your device does not support Orvik Lumbra.");
    EXPECT_THAT(results, IsEmpty());
    dialog.Close();
    EXPECT_THAT(results, ElementsAre(S_OK));
}

TEST_F(PrivacyPanelEventTest, Delivered_OtherDataOrSilenced_ShowsNothing)
{
    ASSERT_EQ(m_hub.RegisterPrivacyPanelWMIEvent(), S_OK);
    const NotedDialogs dialogs;
    EXPECT_THAT(WmiEventSource::Raise(Event(0)), ElementsAre(S_OK));
    EXPECT_THAT(WmiEventSource::Raise(Event(2)), ElementsAre(S_OK));
    Silence();
    EXPECT_THAT(WmiEventSource::Raise(Event(1)), ElementsAre(S_OK));
    EXPECT_EQ(dialogs.Count(), 0u);
}

TEST_F(PrivacyPanelEventTest, Flag_IsFalseUntilARegistrationThatHasACommandObject)
{
    EXPECT_FALSE(MayShowNotice(m_hub));
    Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(m_hub.RegisterPrivacyPanelWMIEvent(), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(m_hub.RegisterGPIOWMIEvent(), REGDB_E_CLASSNOTREG);
    EXPECT_FALSE(MayShowNotice(m_hub));
    Facts::Instance().Set("/platform/registered", true);
    {
        const Tests::EmptyHandedCommand emptyHanded;
        EXPECT_EQ(m_hub.RegisterPrivacyPanelWMIEvent(), S_OK);
        EXPECT_FALSE(MayShowNotice(m_hub));
    }
    EXPECT_EQ(m_hub.RegisterPrivacyPanelWMIEvent(), S_OK);
    EXPECT_TRUE(MayShowNotice(m_hub));
}

TEST_F(PrivacyPanelEventTest, Flag_IsSetByTheTwoRegistrationsEvenWhenTheSubscriptionFails)
{
    CallPlan::Instance().Fail("IWbemLocator::ConnectServer", E_FAIL, 1, Simulator::Repeat::Always);
    EXPECT_EQ(m_hub.RegisterSmartAdapterEvent(L""), E_FAIL);
    EXPECT_EQ(m_hub.RegisterVeritorEvent(L""), E_FAIL);
    EXPECT_EQ(m_hub.RegisterFirmwareWMIEvent(), E_FAIL);
    EXPECT_EQ(m_hub.RegisterFirmwareRuntimeWMIEvent(), E_FAIL);
    EXPECT_FALSE(MayShowNotice(m_hub));
    EXPECT_EQ(m_hub.RegisterGPIOWMIEvent(), E_FAIL);
    EXPECT_TRUE(MayShowNotice(m_hub));
    Silence();
    Process(0);
    EXPECT_FALSE(MayShowNotice(m_hub));
    EXPECT_EQ(m_hub.RegisterPrivacyPanelWMIEvent(), E_FAIL);
    EXPECT_TRUE(MayShowNotice(m_hub));
}

#include "app/dialogs/Hyperlink.h"
#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "simulator/model/CallPlan.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/FontLedger.h"
#include "tests/app/dialogs/OpenDialog.h"
#include "tests/app/system/TemporaryFolder.h"
#include "tests/faults/FaultableFunction.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Repeat;
using testing::IsEmpty;
using Tests::FontLedger;
using Tests::OpenDialog;

// Calls of the dialogs that the system refuses: what succeeded is shown.
namespace
{
constexpr const wchar_t* g_marker = L"IgnoreLumbraDialog.txt";

class DialogFailureTest : public testing::Test
{
protected:
    DialogFailureTest()
    {
        g_nLinkKind = -1;
        CallPlan::Instance().Reset();
    }
    ~DialogFailureTest() override { CallPlan::Instance().Reset(); }

    static void Fail(const char* call) { CallPlan::Instance().Fail(call, E_FAIL, 1, Repeat::Always); }

    // A message with a link: the person points at it, clicks it, and with that ends the dialog.
    void UseMessageDialog() const
    {
        const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
        ASSERT_NE(dialog.Window(), nullptr);
        EXPECT_EQ(dialog.Text(139), L"Save your work.");
        EXPECT_EQ(dialog.Text(140), Tests::ProgramString(553));
        dialog.Run(
            [&]
            {
                SendMessageW(dialog.Item(140), WM_SETCURSOR, 0, HTCLIENT);
                SendMessageW(dialog.Item(140), WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
                SendMessageW(dialog.Item(140), WM_MOUSEMOVE, 0, MAKELPARAM(-9, 2));
            });
        dialog.Click(140);
        EXPECT_TRUE(dialog.HasEnded());
        EXPECT_EQ(dialog.Result(), 0);
    }

    void UsePrivacyPanelDialog() const
    {
        const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
        ASSERT_NE(dialog.Window(), nullptr);
        EXPECT_EQ(dialog.Text(139), L"Save your work.");
        EXPECT_EQ(dialog.Text(141), Tests::ProgramString(556));
        SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
        SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
        dialog.Click(IDOK);
        EXPECT_TRUE(dialog.HasEnded());
        EXPECT_EQ(dialog.Result(), 0);
    }

    // Makes each call fail in turn, alone and with all that follow: the use is the same, and nothing is left.
    void Sweep(const std::function<void()>& use) const
    {
        EXPECT_TRUE(TestSupport::LeaksNoHandles(
            [&use]
            {
                for (const Repeat repeat : {Repeat::Once, Repeat::Always})
                    EXPECT_GT(FailEachCall(use, repeat), 3u);
            }));
        EXPECT_TRUE(TestSupport::NothingLogged());
    }

    // How many uses it takes until none of the calls is left to fail.
    static unsigned FailEachCall(const std::function<void()>& use, Repeat repeat)
    {
        unsigned nth = 0;
        do
        {
            CallPlan::Instance().Reset();
            CallPlan::Instance().FailAny(E_FAIL, ++nth, repeat);
            FontLedger::Clear();
            use();
            EXPECT_EQ(FontLedger::Alive(), 0u) << nth;
        } while (CallPlan::Instance().FailedCount() != 0);
        return nth;
    }

    const MessageParameters m_parameters{L"Save your work.", MessageKind::NotRecovered};
    TemporaryFolder m_folder;
    Tests::DialogCalls m_calls;
    FontLedger m_fonts;
    FaultableFunction<struct LoadImageTag, decltype(LoadImageW)> m_image{"LoadImageW", nullptr};
    FaultableFunction<struct CreateFontTag, decltype(CreateFontIndirectW)> m_font{"CreateFontIndirectW", nullptr};
    FaultableFunction<struct SetPropTag, decltype(SetPropW)> m_property{"SetPropW", FALSE};
    FaultableFunction<struct GetObjectTag, decltype(GetObjectW)> m_object{"GetObjectW", 0};
    FaultableFunction<struct LoadCursorTag, decltype(LoadCursorW)> m_cursor{"LoadCursorW", nullptr};
    FaultableFunction<struct ForegroundTag, decltype(SetForegroundWindow)> m_foreground{"SetForegroundWindow", FALSE};
    FaultableFunction<struct OpenTag, decltype(_wfopen_s)> m_open{"_wfopen_s", EACCES};
    FaultableFunction<struct TempTag, decltype(GetTempPathW)> m_temporary{"GetTempPathW", 0};
    FaultableFunction<struct DeleteFileTag, decltype(DeleteFileW)> m_delete{"DeleteFileW", FALSE};
};
} // namespace

TEST_F(DialogFailureTest, LoadImage_TextsAreShownWithoutIcons)
{
    Fail("LoadImageW");
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    EXPECT_EQ(dialog.Text(139), L"Save your work.");
    EXPECT_EQ(dialog.Text(140), Tests::ProgramString(553));
    EXPECT_EQ(dialog.KindIcon(), nullptr);
    EXPECT_EQ(SendMessageW(dialog.Window(), WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_THAT(m_calls.Foreground(), testing::ElementsAre(dialog.Window()));
}

TEST_F(DialogFailureTest, UnderlinedFont_LinkKeepsItsFontUnderThePointer)
{
    for (const char* const call : {"CreateFontIndirectW", "GetObjectW"})
    {
        CallPlan::Instance().Reset();
        Fail(call);
        const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
        const HWND link = dialog.Item(140);
        EXPECT_EQ(GetPropW(link, L"_Hyperlink_Underline_Font_"), nullptr);
        dialog.Run(
            [&]
            {
                const LRESULT font = SendMessageW(link, WM_GETFONT, 0, 0);
                EXPECT_NE(font, 0);
                SendMessageW(link, WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
                EXPECT_EQ(SendMessageW(link, WM_GETFONT, 0, 0), font) << call;
                EXPECT_EQ(GetCapture(), link);
                SendMessageW(link, WM_MOUSEMOVE, 0, MAKELPARAM(-9, 2));
                EXPECT_EQ(SendMessageW(link, WM_GETFONT, 0, 0), font) << call;
                EXPECT_EQ(GetCapture(), nullptr);
            });
    }
}

TEST_F(DialogFailureTest, Properties_ControlStaysAText)
{
    Fail("SetPropW");
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    EXPECT_EQ(dialog.Text(140), Tests::ProgramString(553));
    EXPECT_NE(reinterpret_cast<WNDPROC>(GetWindowLongPtrW(dialog.Item(140), GWLP_WNDPROC)), &HyperlinkProc);
    EXPECT_EQ(FontLedger::Alive(), 0u);
    dialog.Click(140);
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_THAT(m_calls.Boxes(), IsEmpty());
}

TEST_F(DialogFailureTest, Marker_CannotBeOpenedOrFound_DialogIsUsedAsEver)
{
    for (const char* const call : {"_wfopen_s", "GetTempPathW"})
    {
        CallPlan::Instance().Reset();
        Fail(call);
        const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
        SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
        EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 141, BM_GETCHECK, 0, 0), BST_CHECKED);
        EXPECT_EQ(m_folder.ReadFile(g_marker), "(none)");
        EXPECT_NE(CallPlan::Instance().FailedCount(), 0u);
        EXPECT_THAT(m_calls.Ends(), IsEmpty());
        dialog.Click(IDOK);
        EXPECT_TRUE(dialog.HasEnded());
        m_calls.Clear();
    }
}

TEST_F(DialogFailureTest, NoDialog_CallsReturnAndNothingIsLogged)
{
    const Tests::NotedDialogs refused(-1);
    ShowMessageDialog(515, MessageKind::Recovered);
    ShowPrivacyPanelDialog(555, MessageKind::Notice);
    EXPECT_EQ(refused.Count(), 2u);
    EXPECT_EQ(g_nLinkKind, -1);
    EXPECT_TRUE(TestSupport::NothingLogged());
}

TEST_F(DialogFailureTest, EachCallOfTheMessageDialog_FailsInTurn_DialogIsUsedAsEver)
{
    Sweep([this] { UseMessageDialog(); });
}

TEST_F(DialogFailureTest, EachCallOfThePrivacyPanelDialog_FailsInTurn_DialogIsUsedAsEver)
{
    Sweep([this] { UsePrivacyPanelDialog(); });
}

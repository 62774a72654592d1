#include "app/dialogs/PrivacyPanelDialog.h"

#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"
#include "tests/app/system/TemporaryFolder.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DialogCalls;
using Tests::OpenDialog;

namespace
{
constexpr const wchar_t* g_marker = L"IgnoreLumbraDialog.txt";

class PrivacyPanelDialogTest : public testing::Test
{
protected:
    PrivacyPanelDialogTest() { g_nLinkKind = -1; }

    [[nodiscard]] std::string Marker() const { return m_folder.ReadFile(g_marker); }

    static void Check(const OpenDialog& dialog, WPARAM state)
    {
        SendDlgItemMessageW(dialog.Window(), 141, BM_SETCHECK, state, 0);
    }

    // Sends the message on the dialog's thread, straight to the procedure: its answer.
    static INT_PTR Answer(const OpenDialog& dialog, UINT message, WPARAM wParam)
    {
        INT_PTR answer = -1;
        dialog.Run([&] { answer = PrivacyPanelDialogProc(dialog.Window(), message, wParam, 0); });
        return answer;
    }

    // The dialog ends with 0 by what is done to it, and the marker says afterwards what the check box said.
    void ExpectEnd(const std::function<void(const OpenDialog&)>& action)
    {
        for (const bool isChecked : {true, false})
        {
            const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
            ASSERT_NE(dialog.Window(), nullptr);
            Check(dialog, isChecked ? BST_CHECKED : BST_UNCHECKED);
            EXPECT_EQ(Marker(), isChecked ? "(none)" : "true");
            action(dialog);
            EXPECT_TRUE(dialog.HasEnded());
            EXPECT_EQ(dialog.Result(), 0);
            EXPECT_EQ(Marker(), isChecked ? "true" : "(none)");
        }
    }

    // The dialog stays open, but the marker follows.
    void ExpectOpen(UINT message, WPARAM wParam)
    {
        Tests::DialogCalls::Clear();
        const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
        Check(dialog, BST_CHECKED);
        EXPECT_EQ(Answer(dialog, message, wParam), 0) << wParam;
        EXPECT_EQ(Marker(), "true") << wParam;
        Check(dialog, BST_UNCHECKED);
        EXPECT_EQ(Answer(dialog, message, wParam), 0) << wParam;
        EXPECT_EQ(Marker(), "(none)") << wParam;
        EXPECT_THAT(m_calls.Ends(), IsEmpty()) << wParam;
    }

    TemporaryFolder m_folder;
    const MessageParameters m_parameters{L"Nothing to see here.", MessageKind::Notice};
    DialogCalls m_calls;
};
} // namespace

TEST_F(PrivacyPanelDialogTest, Opening_TextsAndAnEmptyCheckBoxInFront)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), L"Nothing to see here.");
    EXPECT_EQ(dialog.Text(141), L"Do not display this message again.");
    EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 141, BM_GETCHECK, 0, 0), BST_UNCHECKED);
    EXPECT_THAT(m_calls.Foreground(), ElementsAre(dialog.Window()));
    EXPECT_EQ(SendMessageW(dialog.Window(), WM_GETICON, ICON_BIG, 0),
              reinterpret_cast<LRESULT>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(136), IMAGE_ICON, 0, 0,
                                                   LR_SHARED | LR_DEFAULTSIZE)));
    dialog.Run([&] { EXPECT_EQ(GetNextDlgTabItem(dialog.Window(), nullptr, FALSE), dialog.Item(IDOK)); });
    EXPECT_EQ(Marker(), "(none)");
}

TEST_F(PrivacyPanelDialogTest, Opening_WithoutParameters_ShowsTheTemplate)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, nullptr);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), L"");
    EXPECT_EQ(dialog.Text(141), L"");
    EXPECT_EQ(dialog.KindIcon(), nullptr);
    EXPECT_EQ(SendMessageW(dialog.Window(), WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_THAT(m_calls.Foreground(), IsEmpty());
    EXPECT_EQ(Answer(dialog, WM_INITDIALOG, 0), TRUE);
}

TEST_F(PrivacyPanelDialogTest, Opening_AMarkerThatIsThere_DoesNotCheckTheBox)
{
    m_folder.WriteFile(g_marker, "true");
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 141, BM_GETCHECK, 0, 0), BST_UNCHECKED);
    EXPECT_EQ(Marker(), "true");
}

TEST_F(PrivacyPanelDialogTest, CheckBox_EveryClickChangesTheMarkerAtOnce)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    for (int i = 0; i < 3; ++i)
    {
        SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
        EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 141, BM_GETCHECK, 0, 0), BST_CHECKED);
        EXPECT_EQ(Marker(), "true");
        SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
        EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 141, BM_GETCHECK, 0, 0), BST_UNCHECKED);
        EXPECT_EQ(Marker(), "(none)");
    }
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_F(PrivacyPanelDialogTest, CheckBox_ReplacesWhatTheMarkerHeld)
{
    m_folder.WriteFile(g_marker, "something that is longer");
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
    EXPECT_EQ(Marker(), "true");
}

TEST_F(PrivacyPanelDialogTest, WaysOut_EndItWithTheMarkerLikeTheCheckBox)
{
    ExpectEnd([](const OpenDialog& dialog) { dialog.Click(IDOK); });
    ExpectEnd([](const OpenDialog& dialog) { dialog.Press(VK_RETURN); });
    ExpectEnd([](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_COMMAND, IDOK, 0); });
    ExpectEnd([](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_CLOSE, 0, 0); });
    ExpectEnd([](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_SYSCOMMAND, SC_CLOSE, 0); });
    ExpectEnd([](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_COMMAND, 0, 0); });
}

TEST_F(PrivacyPanelDialogTest, OtherCommands_LeaveItOpenAndTheMarkerFollows)
{
    for (const WPARAM command : {WPARAM{IDCANCEL}, WPARAM{3}, WPARAM{141}, WPARAM{MAKEWPARAM(IDOK, BN_SETFOCUS)},
                                 WPARAM{MAKEWPARAM(0, 1)}, WPARAM{0x100000001}, ~WPARAM{0}})
        ExpectOpen(WM_COMMAND, command);
}

TEST_F(PrivacyPanelDialogTest, CloseWithAParameter_LeavesItOpenAndTheMarkerFollows)
{
    ExpectOpen(WM_CLOSE, 1);
    ExpectOpen(WM_CLOSE, 2);
}

TEST_F(PrivacyPanelDialogTest, Escape_LeavesItOpenAndTheMarkerFollows)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    Check(dialog, BST_CHECKED);
    dialog.Press(VK_ESCAPE);
    for (int i = 0; i < 3000 && Marker() != "true"; ++i)
        Sleep(10);
    EXPECT_EQ(Marker(), "true");
    dialog.Run([] {});
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
    EXPECT_TRUE(IsWindowVisible(dialog.Window()));
}

TEST_F(PrivacyPanelDialogTest, OkAndClose_AnswerTrue)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    dialog.Run(
        [&]
        {
            EXPECT_EQ(PrivacyPanelDialogProc(dialog.Window(), WM_COMMAND, IDOK, 0), TRUE);
            EXPECT_EQ(PrivacyPanelDialogProc(dialog.Window(), WM_CLOSE, 0, 0), TRUE);
        });
    EXPECT_THAT(m_calls.Ends(), ElementsAre(0, 0));
}

TEST_F(PrivacyPanelDialogTest, OtherMessages_AreNotHandledAndLeaveTheMarker)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    Check(dialog, BST_CHECKED);
    for (const UINT message : {WM_NULL, WM_TIMER, WM_KEYDOWN, WM_CTLCOLOREDIT, WM_CTLCOLORDLG, WM_CTLCOLORBTN,
                               WM_DESTROY, WM_SYSCOMMAND, WM_APP})
        EXPECT_EQ(Answer(dialog, message, 1), FALSE) << message;
    EXPECT_EQ(Marker(), "(none)");
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_F(PrivacyPanelDialogTest, Colours_AreLeftToTheSystemButForALink)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    dialog.Run(
        [&]
        {
            const HDC context = GetDC(dialog.Window());
            const auto colour = [&](HWND control)
            {
                return PrivacyPanelDialogProc(dialog.Window(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                                              reinterpret_cast<LPARAM>(control));
            };
            SetTextColor(context, 0x123456);
            for (const int id : {139, 141, 135, IDOK})
                EXPECT_EQ(colour(dialog.Item(id)), 0) << id;
            EXPECT_EQ(GetTextColor(context), 0x123456u);
            const HWND link = CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 9, 9, dialog.Window(),
                                              reinterpret_cast<HMENU>(140), nullptr, nullptr);
            EXPECT_EQ(colour(link), reinterpret_cast<INT_PTR>(GetSysColorBrush(15)));
            EXPECT_EQ(GetTextColor(context), 0xC00000u);
            EXPECT_EQ(GetBkMode(context), TRANSPARENT);
            ReleaseDC(dialog.Window(), context);
        });
}

TEST_F(PrivacyPanelDialogTest, MarkerCannotBeMade_DialogEndsAllTheSame)
{
    m_folder.AnswerLength(0);
    OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    SendDlgItemMessageW(dialog.Window(), 141, BM_CLICK, 0, 0);
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
    dialog.Click(IDOK);
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_EQ(dialog.Result(), 0);
    m_folder.Answer(m_folder.Path());
    EXPECT_EQ(Marker(), "(none)");
}

TEST_F(PrivacyPanelDialogTest, ShowPrivacyPanelDialog_StringOfTheProgram)
{
    OpenDialog dialog([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), L"Your device does not support Orvik Lumbra.");
    dialog.Close();
    EXPECT_THAT(m_calls.Ends(), ElementsAre(0));
}

TEST(ShowPrivacyPanelDialog, Call_NoModuleNoOwnerDialog142)
{
    const Tests::NotedDialogs dialogs;
    ShowPrivacyPanelDialog(555, MessageKind::Notice);
    const auto all = dialogs.All();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].m_hModule, nullptr);
    EXPECT_EQ(all[0].m_nTemplate, 142u);
    EXPECT_EQ(all[0].m_hwndOwner, nullptr);
    EXPECT_EQ(all[0].m_pfnProcedure, &PrivacyPanelDialogProc);
    EXPECT_EQ(all[0].m_strText, Tests::ProgramString(555));
    EXPECT_EQ(all[0].m_nKind, 4);
}

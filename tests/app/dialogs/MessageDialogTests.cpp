#include "app/dialogs/MessageDialog.h"

#include "app/dialogs/Hyperlink.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"

#include <gmock/gmock.h>

#include <mutex>
#include <tuple>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DialogCalls;
using Tests::OpenDialog;

namespace
{
class MessageDialogTest : public testing::Test
{
protected:
    MessageDialogTest() { g_nLinkKind = -1; }

    // The dialog ends by what is done to it, with 0.
    void ExpectEnd(const std::function<void(const OpenDialog&)>& action)
    {
        const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
        ASSERT_NE(dialog.Window(), nullptr);
        action(dialog);
        EXPECT_TRUE(dialog.HasEnded());
        EXPECT_EQ(dialog.Result(), 0);
    }

    DialogCalls m_calls;
    const MessageParameters m_parameters{L"Save your work.", MessageKind::NotRecovered};
};

struct LoadedImage
{
    HINSTANCE m_hModule;
    ULONG_PTR m_nName;
    UINT m_nType;
    int m_nWidth;
    int m_nHeight;
    UINT m_nFlags;

    bool operator==(const LoadedImage&) const = default;
};

std::mutex g_lock;
std::vector<LoadedImage> g_lstImages;
decltype(LoadImageW)* g_pfnLoadImage = nullptr;

HANDLE WINAPI NotedLoadImageW(HINSTANCE module, LPCWSTR name, UINT type, int width, int height, UINT flags)
{
    {
        const std::lock_guard lock(g_lock);
        g_lstImages.push_back({module, reinterpret_cast<ULONG_PTR>(name), type, width, height, flags});
    }
    return g_pfnLoadImage(module, name, type, width, height, flags);
}
} // namespace

TEST_F(MessageDialogTest, Opening_BringsItToTheFrontWithOkReadyToBePressed)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_THAT(m_calls.Foreground(), ElementsAre(dialog.Window()));
    dialog.Run(
        [&]
        {
            EXPECT_TRUE(IsWindowVisible(dialog.Window()));
            EXPECT_EQ(GetNextDlgTabItem(dialog.Window(), nullptr, FALSE), dialog.Item(IDOK));
        });
    EXPECT_EQ(GetWindow(dialog.Window(), GW_OWNER), nullptr);
    EXPECT_NE(GetWindowLongPtrW(dialog.Window(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
}

TEST_F(MessageDialogTest, Opening_ProgramsIconIsTheDialogsOwn)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    const auto icon = SendMessageW(dialog.Window(), WM_GETICON, ICON_BIG, 0);
    EXPECT_NE(icon, 0);
    EXPECT_EQ(icon, reinterpret_cast<LRESULT>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(136), IMAGE_ICON,
                                                         0, 0, LR_SHARED | LR_DEFAULTSIZE)));
}

TEST_F(MessageDialogTest, Opening_IconsAreAskedForByNameAndSize)
{
    g_lstImages.clear();
    const Simulator::Redirection<decltype(LoadImageW)> noted("LoadImageW", &NotedLoadImageW);
    g_pfnLoadImage = noted.Original();
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    constexpr UINT flags = LR_SHARED | LR_DEFAULTSIZE;
    EXPECT_THAT(g_lstImages, ElementsAre(LoadedImage{nullptr, 32515, IMAGE_ICON, 32, 32, flags},
                                         LoadedImage{GetModuleHandleW(nullptr), 136, IMAGE_ICON, 0, 0, flags}));
}

TEST_F(MessageDialogTest, Opening_WithoutParameters_ShowsTheTemplate)
{
    const OpenDialog dialog(102, &MessageDialogProc, nullptr);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), L"");
    EXPECT_EQ(dialog.Text(140), L"For More Information Click Here");
    EXPECT_EQ(dialog.Text(IDOK), L"OK");
    EXPECT_EQ(dialog.KindIcon(), nullptr);
    EXPECT_EQ(SendMessageW(dialog.Window(), WM_GETICON, ICON_BIG, 0), 0);
    EXPECT_THAT(m_calls.Foreground(), IsEmpty());
    EXPECT_EQ(g_nLinkKind, -1);
    EXPECT_NE(reinterpret_cast<WNDPROC>(GetWindowLongPtrW(dialog.Item(140), GWLP_WNDPROC)), &HyperlinkProc);
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_F(MessageDialogTest, Opening_AnswersTrueWithAndWithoutParameters)
{
    const OpenDialog dialog(102, &MessageDialogProc, nullptr);
    dialog.Run(
        [&]
        {
            EXPECT_EQ(MessageDialogProc(dialog.Window(), WM_INITDIALOG, 0, 0), TRUE);
            EXPECT_EQ(MessageDialogProc(dialog.Window(), WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&m_parameters)),
                      TRUE);
        });
    EXPECT_EQ(dialog.Text(139), L"Save your work.");
}

TEST_F(MessageDialogTest, EveryCommand_EndsItWithZero)
{
    for (const WPARAM command :
         {WPARAM{0}, WPARAM{IDOK}, WPARAM{IDCANCEL}, WPARAM{3}, WPARAM{140}, WPARAM{MAKEWPARAM(139, EN_SETFOCUS)},
          WPARAM{MAKEWPARAM(IDOK, BN_SETFOCUS)}, WPARAM{0xFFFFFFFF}, ~WPARAM{0}})
        ExpectEnd([command](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_COMMAND, command, 0); });
}

TEST_F(MessageDialogTest, Commands_AreAnsweredWithTrue)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    dialog.Run(
        [&]
        {
            EXPECT_EQ(MessageDialogProc(dialog.Window(), WM_CLOSE, 0, 0), TRUE);
            EXPECT_EQ(MessageDialogProc(dialog.Window(), WM_COMMAND, 4711, 0), TRUE);
        });
    EXPECT_THAT(m_calls.Ends(), ElementsAre(0, 0));
}

TEST_F(MessageDialogTest, PersonsWaysOut_EndItWithZero)
{
    ExpectEnd([](const OpenDialog& dialog) { dialog.Click(IDOK); });
    ExpectEnd([](const OpenDialog& dialog) { dialog.Press(VK_RETURN); });
    ExpectEnd([](const OpenDialog& dialog) { dialog.Press(VK_ESCAPE); });
    ExpectEnd([](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_CLOSE, 0, 0); });
    ExpectEnd([](const OpenDialog& dialog) { PostMessageW(dialog.Window(), WM_SYSCOMMAND, SC_CLOSE, 0); });
}

TEST_F(MessageDialogTest, OtherMessages_AreNotHandled)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    dialog.Run(
        [&]
        {
            for (const UINT message : {WM_NULL, WM_TIMER, WM_KEYDOWN, WM_CTLCOLOREDIT, WM_CTLCOLORDLG, WM_CTLCOLORBTN,
                                       WM_DESTROY, WM_NOTIFY, WM_SYSCOMMAND, WM_APP, 0x0109, 0x0112, 0x0137, 0x0139})
                EXPECT_EQ(MessageDialogProc(dialog.Window(), message, 1, 0), FALSE) << message;
        });
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_F(MessageDialogTest, LinksColour_BlueOnTheFaceOfButtons)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    dialog.Run(
        [&]
        {
            const HDC context = GetDC(dialog.Item(140));
            SetTextColor(context, 0x123456);
            SetBkMode(context, OPAQUE);
            EXPECT_EQ(MessageDialogProc(dialog.Window(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                                        reinterpret_cast<LPARAM>(dialog.Item(140))),
                      reinterpret_cast<INT_PTR>(GetSysColorBrush(15)));
            EXPECT_EQ(GetTextColor(context), 0xC00000u);
            EXPECT_EQ(GetBkMode(context), TRANSPARENT);
            ReleaseDC(dialog.Item(140), context);
        });
}

TEST_F(MessageDialogTest, OtherControlsColours_AreLeftToTheSystem)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    dialog.Run(
        [&]
        {
            const HDC context = GetDC(dialog.Window());
            SetTextColor(context, 0x123456);
            SetBkMode(context, OPAQUE);
            for (const HWND control : {dialog.Item(139), dialog.Item(135), dialog.Item(IDOK), dialog.Window()})
                EXPECT_EQ(MessageDialogProc(dialog.Window(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                                            reinterpret_cast<LPARAM>(control)),
                          0);
            EXPECT_EQ(GetTextColor(context), 0x123456u);
            EXPECT_EQ(GetBkMode(context), OPAQUE);
            ReleaseDC(dialog.Window(), context);
        });
}

TEST_F(MessageDialogTest, ShowMessageDialog_StringOfTheProgramWithItsKind)
{
    OpenDialog dialog([] { ShowMessageDialog(525, MessageKind::NotRecovered); });
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), Tests::ProgramString(525));
    EXPECT_EQ(g_nLinkKind, 1);
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
    dialog.Close();
    EXPECT_THAT(m_calls.Ends(), ElementsAre(0));
}

TEST(ShowMessageDialog, Call_NoModuleNoOwnerDialog102)
{
    const Tests::NotedDialogs dialogs;
    ShowMessageDialog(552, MessageKind::Warning);
    const auto all = dialogs.All();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].m_hModule, nullptr);
    EXPECT_EQ(all[0].m_nTemplate, 102u);
    EXPECT_EQ(all[0].m_hwndOwner, nullptr);
    EXPECT_EQ(all[0].m_pfnProcedure, &MessageDialogProc);
    EXPECT_EQ(all[0].m_strText, Tests::ProgramString(552));
    EXPECT_EQ(all[0].m_nKind, 5);
}

#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"

#include <gmock/gmock.h>

#include <string>

using testing::IsEmpty;
using Tests::DialogCalls;
using Tests::OpenDialog;
using Tests::ProgramString;

// Whether the texts have room in their controls. An edit control that is too small closes dialog 102.
namespace
{
// Size that the text takes in the control's font, its lines broken at that width; 0 leaves them as they are.
SIZE Measure(HWND control, const std::wstring& text, LONG width, UINT flags)
{
    const HDC context = GetDC(control);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = SelectObject(context, font);
    RECT area{0, 0, width, 0};
    DrawTextW(context, text.c_str(), -1, &area, DT_CALCRECT | flags);
    SelectObject(context, before);
    ReleaseDC(control, context);
    return {area.right, area.bottom};
}

SIZE RoomIn(HWND control)
{
    RECT area{};
    GetClientRect(control, &area);
    return {area.right, area.bottom};
}

class MessageFitTest : public testing::TestWithParam<UINT>
{
protected:
    const std::wstring m_strText = ProgramString(GetParam());
    const MessageParameters m_parameters{m_strText.c_str(), MessageKind::Recovered};
    DialogCalls m_calls;
};
} // namespace

TEST_P(MessageFitTest, Text_LeavesRoomInTheEditControl)
{
    ASSERT_FALSE(m_strText.empty());
    // Without parameters the control is empty, whatever happens to the text.
    const OpenDialog dialog(102, &MessageDialogProc, nullptr);
    const HWND control = dialog.Item(139);
    RECT area{};
    SendMessageW(control, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    const LONG width = area.right - area.left;
    ASSERT_GT(width, 0);
    const SIZE needed = Measure(control, m_strText, width, DT_EDITCONTROL | DT_WORDBREAK | DT_NOPREFIX);
    EXPECT_GT(needed.cy, 0);
    EXPECT_LE(needed.cy, area.bottom - area.top);
}

TEST_P(MessageFitTest, Text_DoesNotCloseTheDialog)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Text(139), m_strText);
    dialog.Run(
        [&]
        {
            UpdateWindow(dialog.Window());
            EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 139, EM_GETFIRSTVISIBLELINE, 0, 0), 0);
        });
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Strings, MessageFitTest, testing::Values(515u, 523u, 524u, 525u, 529u, 552u),
                         [](const auto& test) { return std::to_string(test.param); });

TEST(DialogFit, PrivacyPanel_TextsFitTheirControls)
{
    const OpenDialog dialog([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    const SIZE message = Measure(dialog.Item(139), ProgramString(555), 0, DT_SINGLELINE);
    const SIZE room = RoomIn(dialog.Item(139));
    EXPECT_LE(message.cx, room.cx);
    EXPECT_LE(message.cy, room.cy);
    // Left of its text the check box has its square and a gap.
    const SIZE again = Measure(dialog.Item(141), ProgramString(556), 0, DT_SINGLELINE);
    const SIZE box = RoomIn(dialog.Item(141));
    EXPECT_LE(again.cx + GetSystemMetrics(SM_CXMENUCHECK) + 4, box.cx);
    EXPECT_LE(again.cy, box.cy);
}

TEST(DialogFit, Link_AddressFitsItsControl)
{
    const OpenDialog dialog([] { ShowMessageDialog(524, MessageKind::Recovered); });
    const SIZE address = Measure(dialog.Item(140), ProgramString(553), 0, DT_SINGLELINE | DT_NOPREFIX);
    const SIZE room = RoomIn(dialog.Item(140));
    EXPECT_LE(address.cx, room.cx);
    EXPECT_LE(address.cy, room.cy);
}

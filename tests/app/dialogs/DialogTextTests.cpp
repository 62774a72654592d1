#include "app/dialogs/DialogText.h"

#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <tuple>

using Simulator::Redirection;
using testing::ElementsAre;
using Tests::DialogCalls;
using Tests::OpenDialog;

namespace
{
std::vector<std::tuple<HINSTANCE, UINT, int>> g_lstLoaded;

int WINAPI FillString(HINSTANCE module, UINT id, LPWSTR buffer, int capacity)
{
    g_lstLoaded.emplace_back(module, id, capacity);
    std::wmemset(buffer, L'x', static_cast<std::size_t>(capacity - 1));
    buffer[capacity - 1] = L'\0';
    return capacity - 1;
}

// Leaves the buffer alone, as the system does.
int WINAPI NoString(HINSTANCE, UINT, LPWSTR, int)
{
    return 0;
}
} // namespace

TEST(DialogText, String_OfTheProgramItself)
{
    EXPECT_STREQ(DialogText(556).Text(), L"Do not display this message again.");
}

TEST(DialogText, Call_NoModuleAndRoomFor2048Characters)
{
    g_lstLoaded.clear();
    const Redirection<decltype(LoadStringW)> fill("LoadStringW", &FillString);
    EXPECT_EQ(DialogText(530).Text(), std::wstring(2047, L'x'));
    EXPECT_THAT(g_lstLoaded, ElementsAre(std::tuple(nullptr, 530u, 2048)));
}

TEST(DialogText, MissingString_IsEmpty)
{
    EXPECT_STREQ(DialogText(499).Text(), L"");
    const Redirection<decltype(LoadStringW)> none("LoadStringW", &NoString);
    EXPECT_STREQ(DialogText(530).Text(), L"");
}

TEST(DialogText, MissingString_DialogsAreShownWithoutAMessage)
{
    const Redirection<decltype(LoadStringW)> none("LoadStringW", &NoString);
    const DialogCalls calls;
    const OpenDialog message([] { ShowMessageDialog(515, MessageKind::Notice); });
    const OpenDialog privacy([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    ASSERT_NE(message.Window(), nullptr);
    ASSERT_NE(privacy.Window(), nullptr);
    EXPECT_EQ(message.Text(139), L"");
    EXPECT_EQ(privacy.Text(139), L"");
    EXPECT_EQ(privacy.Text(141), L"");
    EXPECT_THAT(calls.Ends(), testing::IsEmpty());
}

TEST(DialogText, LongestString_PrivacyPanelTakesItAsAWhole)
{
    const Redirection<decltype(LoadStringW)> fill("LoadStringW", &FillString);
    const OpenDialog dialog([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    EXPECT_EQ(dialog.Text(139), std::wstring(2047, L'x'));
    EXPECT_EQ(dialog.Text(141), std::wstring(2047, L'x'));
}

TEST(DialogText, LongestString_MessageDialogIsEndedByItsOwnEditControl)
{
    // The control tells its dialog that it scrolls, and that is a command: no message may be longer than the control.
    const Redirection<decltype(LoadStringW)> fill("LoadStringW", &FillString);
    const DialogCalls calls;
    const OpenDialog dialog([] { ShowMessageDialog(515, MessageKind::Notice); });
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_THAT(calls.Ends(), testing::Not(testing::IsEmpty()));
}

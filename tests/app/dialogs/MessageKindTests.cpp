#include "app/dialogs/DialogOpening.h"
#include "app/dialogs/Hyperlink.h"
#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/OpenDialog.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <vector>

using testing::IsEmpty;
using Tests::DialogCalls;
using Tests::OpenDialog;

// What the number of a message means to the dialogs.
namespace
{
enum class Link
{
    Made,
    Emptied,
    Untouched
};

struct KindRow
{
    int m_nKind;
    LPCWSTR m_pIcon;
    Link m_link;
    std::optional<int> m_nLinkKind; // nothing: as it was before
};

constexpr int g_before = 77;

const KindRow g_rows[] = {{0, IDI_INFORMATION, Link::Made, 0},
                          {1, IDI_WARNING, Link::Made, 1},
                          {2, IDI_WARNING, Link::Made, 2},
                          {3, IDI_ERROR, Link::Emptied, std::nullopt},
                          {4, IDI_INFORMATION, Link::Emptied, std::nullopt},
                          {5, IDI_WARNING, Link::Made, std::nullopt},
                          {6, IDI_INFORMATION, Link::Untouched, std::nullopt},
                          {-1, IDI_INFORMATION, Link::Untouched, std::nullopt},
                          {136, IDI_INFORMATION, Link::Untouched, std::nullopt},
                          {std::numeric_limits<int>::max(), IDI_INFORMATION, Link::Untouched, std::nullopt},
                          {std::numeric_limits<int>::min(), IDI_INFORMATION, Link::Untouched, std::nullopt}};

HICON SystemIcon(LPCWSTR name)
{
    return static_cast<HICON>(LoadImageW(nullptr, name, IMAGE_ICON, 32, 32, LR_SHARED | LR_DEFAULTSIZE));
}

bool IsLink(HWND control)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(control, GWLP_WNDPROC)) == &HyperlinkProc;
}

class MessageKindTest : public testing::TestWithParam<KindRow>
{
protected:
    MessageKindTest() { g_nLinkKind = g_before; }

    static std::wstring ExpectedLinkText()
    {
        switch (GetParam().m_link)
        {
        case Link::Made:
            return Tests::ProgramString(553);
        case Link::Emptied:
            return L"";
        default:
            return L"For More Information Click Here";
        }
    }

    DialogCalls m_calls;
    const MessageParameters m_parameters{L"Save your work.", static_cast<MessageKind>(GetParam().m_nKind)};
};
// The kinds that make no link.
class PlainKindTest : public MessageKindTest
{
};

std::vector<KindRow> RowsWithoutALink()
{
    std::vector<KindRow> rows;
    std::ranges::copy_if(g_rows, std::back_inserter(rows), [](const KindRow& row) { return row.m_link != Link::Made; });
    return rows;
}
} // namespace

TEST(MessageKind, SystemIcons_AreThreeDifferentOnes)
{
    EXPECT_NE(SystemIcon(IDI_INFORMATION), nullptr);
    EXPECT_NE(SystemIcon(IDI_INFORMATION), SystemIcon(IDI_WARNING));
    EXPECT_NE(SystemIcon(IDI_WARNING), SystemIcon(IDI_ERROR));
    EXPECT_NE(SystemIcon(IDI_ERROR), SystemIcon(IDI_INFORMATION));
}

TEST_P(MessageKindTest, MessageDialog_IconTextAndLink)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.KindIcon(), SystemIcon(GetParam().m_pIcon));
    EXPECT_EQ(dialog.Text(139), L"Save your work.");
    EXPECT_EQ(dialog.Text(140), ExpectedLinkText());
    EXPECT_EQ(IsLink(dialog.Item(140)), GetParam().m_link == Link::Made);
    EXPECT_EQ(g_nLinkKind, GetParam().m_nLinkKind.value_or(g_before));
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_P(MessageKindTest, PrivacyPanelDialog_IconAndTextAndTheSameLinkKind)
{
    const OpenDialog dialog(142, &PrivacyPanelDialogProc, &m_parameters);
    ASSERT_NE(dialog.Window(), nullptr);
    EXPECT_EQ(dialog.Item(140), nullptr);
    EXPECT_EQ(dialog.KindIcon(), SystemIcon(GetParam().m_pIcon));
    EXPECT_EQ(dialog.Text(139), L"Save your work.");
    EXPECT_EQ(dialog.Text(141), L"Do not display this message again.");
    EXPECT_EQ(GetPropW(dialog.Window(), L"_Hyperlink_Original_Proc_"), nullptr);
    EXPECT_EQ(g_nLinkKind, GetParam().m_nLinkKind.value_or(g_before));
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

TEST_P(PlainKindTest, MessageDialog_ControlHasNothingOfALink)
{
    const OpenDialog dialog(102, &MessageDialogProc, &m_parameters);
    const HWND control = dialog.Item(140);
    for (const wchar_t* const name : {L"_Hyperlink_Original_Proc_", L"_Hyperlink_Original_Font_",
                                      L"_Hyperlink_Underline_Font_", L"_Hyperlink_From_Static_"})
        EXPECT_EQ(GetPropW(control, name), nullptr) << name;
    EXPECT_EQ(GetPropW(dialog.Window(), L"_Hyperlink_Original_Proc_"), nullptr);
    EXPECT_EQ(GetWindowLongPtrW(control, GWL_STYLE) & SS_NOTIFY, 0);
    dialog.Run(
        [control]
        {
            SendMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
            SendMessageW(control, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
        });
    EXPECT_THAT(m_calls.Boxes(), IsEmpty());
    EXPECT_THAT(m_calls.Ends(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Kinds, MessageKindTest, testing::ValuesIn(g_rows),
                         [](const auto& test) { return "Row" + std::to_string(test.index); });
INSTANTIATE_TEST_SUITE_P(Kinds, PlainKindTest, testing::ValuesIn(RowsWithoutALink()),
                         [](const auto& test) { return "Row" + std::to_string(test.index); });

namespace
{
// The variable as the program begins with it.
const int g_linkKindAtStart = g_nLinkKind;

class LinkKindTest : public testing::Test
{
protected:
    LinkKindTest() { g_nLinkKind = -1; }

    // Opens the dialog of that kind and clicks its link: the texts of the message boxes so far. The click is a command
    // to the dialog as well, which ends it.
    std::vector<std::wstring> ClickInDialogOf(MessageKind kind)
    {
        const MessageParameters parameters{L"Save your work.", kind};
        const OpenDialog dialog(102, &MessageDialogProc, &parameters);
        dialog.Click(140);
        EXPECT_TRUE(dialog.HasEnded());
        return m_calls.BoxTexts();
    }

    static void Open(MessageKind kind)
    {
        const MessageParameters parameters{L"Save your work.", kind};
        const OpenDialog dialog(102, &MessageDialogProc, &parameters);
    }

    DialogCalls m_calls;
};
} // namespace

TEST_F(LinkKindTest, AtFirst_NoDialogHasSetIt)
{
    EXPECT_EQ(g_linkKindAtStart, -1);
}

TEST_F(LinkKindTest, FifthKind_AsTheFirstDialog_ClickShowsNothing)
{
    EXPECT_THAT(ClickInDialogOf(MessageKind::Warning), IsEmpty());
    EXPECT_EQ(g_nLinkKind, -1);
}

TEST_F(LinkKindTest, FifthKind_AfterTheFirstKind_ClickRepeatsWhatThatOneTold)
{
    Open(MessageKind::NotRecovered);
    EXPECT_THAT(ClickInDialogOf(MessageKind::Warning), testing::ElementsAre(Tests::ProgramString(531)));
}

TEST_F(LinkKindTest, KindsWithoutALink_LeaveItToTheNextDialog)
{
    Open(MessageKind::RuntimeIntrusion);
    Open(MessageKind::PowerOff);
    Open(MessageKind::Notice);
    EXPECT_THAT(ClickInDialogOf(MessageKind::Warning), testing::ElementsAre(Tests::ProgramString(508)));
}

TEST_F(LinkKindTest, Click_ShowsTheMessageOfItsKindAndEndsTheDialog)
{
    EXPECT_THAT(ClickInDialogOf(MessageKind::Recovered), testing::ElementsAre(Tests::ProgramString(530)));
    EXPECT_THAT(ClickInDialogOf(MessageKind::NotRecovered).back(), Tests::ProgramString(531));
    EXPECT_THAT(ClickInDialogOf(MessageKind::RuntimeIntrusion).back(), Tests::ProgramString(508));
    EXPECT_THAT(m_calls.Ends(), testing::ElementsAre(0, 0, 0));
}

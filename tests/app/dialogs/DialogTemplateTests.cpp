#include "tests/app/dialogs/DialogTemplate.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::ElementsAre;
using Tests::ControlTemplate;
using Tests::DialogTemplate;

namespace
{
// Classes of the system.
constexpr const wchar_t* g_button = L"#128";
constexpr const wchar_t* g_edit = L"#129";
constexpr const wchar_t* g_static = L"#130";

constexpr std::uint32_t g_child = WS_CHILD | WS_VISIBLE;

const ControlTemplate g_ok{1, g_button, L"OK", {232, 83, 44, 12}, g_child | WS_TABSTOP | BS_DEFPUSHBUTTON, 0};
const ControlTemplate g_icon{
    135, g_static, L"", {19, 17, 21, 20}, g_child | SS_ICON | SS_CENTERIMAGE | SS_REALSIZEIMAGE, 0};

class DialogTemplateTest : public testing::TestWithParam<UINT>
{
protected:
    DialogTemplate m_template{GetParam()};
};
} // namespace

TEST_P(DialogTemplateTest, Dialog_SizeStylesAndCaption)
{
    EXPECT_THAT(m_template.m_lstPlace, ElementsAre(0, 0, 307, 114));
    EXPECT_EQ(m_template.m_nStyle, static_cast<std::uint32_t>(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME |
                                                              DS_CENTER | DS_SETFOREGROUND | DS_SETFONT));
    EXPECT_EQ(m_template.m_nExStyle, static_cast<std::uint32_t>(WS_EX_TOPMOST | WS_EX_CONTROLPARENT));
    EXPECT_EQ(m_template.m_strCaption, L"Orvik Notifications");
    EXPECT_EQ(m_template.m_strMenu, L"");
    EXPECT_EQ(m_template.m_strClass, L"");
}

TEST_P(DialogTemplateTest, Font_IsTheShellsInEightPoints)
{
    EXPECT_EQ(m_template.m_strFont, L"MS Shell Dlg");
    EXPECT_EQ(m_template.m_nPointSize, 8);
    EXPECT_TRUE(m_template.m_nWeight == FW_DONTCARE || m_template.m_nWeight == FW_NORMAL) << m_template.m_nWeight;
    EXPECT_FALSE(m_template.m_bItalic);
}

TEST_P(DialogTemplateTest, TabStops_OkIsTheFirst)
{
    const auto& controls = m_template.m_lstControls;
    const auto first =
        std::ranges::find_if(controls, [](const ControlTemplate& control) { return control.m_nStyle & WS_TABSTOP; });
    ASSERT_NE(first, controls.end());
    EXPECT_EQ(first->m_nId, 1u);
}

TEST_P(DialogTemplateTest, Language_EnglishOfTheUnitedStates)
{
    const WORD language = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    EXPECT_NE(FindResourceExW(nullptr, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(GetParam()), language), nullptr);
}

// Extended styles that a mirrored window turns round again are not among them.
TEST_P(DialogTemplateTest, RightToLeft_IsTheEnglishOneMirrored)
{
    for (const WORD language : {WORD{LANG_ARABIC}, WORD{LANG_HEBREW}})
    {
        const DialogTemplate mirrored(GetParam(), language);
        EXPECT_EQ(mirrored.m_nExStyle, m_template.m_nExStyle | WS_EX_LAYOUTRTL) << language;
        EXPECT_EQ(mirrored.m_nStyle, m_template.m_nStyle) << language;
        EXPECT_EQ(mirrored.m_lstPlace, m_template.m_lstPlace) << language;
        EXPECT_EQ(mirrored.m_strCaption, m_template.m_strCaption) << language;
        EXPECT_EQ(mirrored.m_strFont, m_template.m_strFont) << language;
        EXPECT_EQ(mirrored.m_nPointSize, m_template.m_nPointSize) << language;
        EXPECT_EQ(mirrored.m_lstControls, m_template.m_lstControls) << language;
    }
}

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogTemplateTest, testing::Values(102u, 142u),
                         [](const auto& test) { return std::to_string(test.param); });

TEST(DialogTemplate, Message_Controls)
{
    EXPECT_THAT(DialogTemplate(102).m_lstControls,
                testing::UnorderedElementsAre(
                    g_ok, g_icon,
                    ControlTemplate{139,
                                    g_edit,
                                    L"",
                                    {51, 15, 232, 60},
                                    g_child | WS_TABSTOP | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL,
                                    0},
                    ControlTemplate{140,
                                    g_static,
                                    L"For More Information Click Here",
                                    {54, 85, 129, 8},
                                    g_child | WS_GROUP | SS_LEFT | SS_NOPREFIX,
                                    0}));
}

TEST(DialogTemplate, PrivacyPanel_Controls)
{
    EXPECT_THAT(DialogTemplate(142).m_lstControls,
                testing::UnorderedElementsAre(
                    g_ok, g_icon,
                    ControlTemplate{139, g_static, L"", {60, 23, 200, 10}, g_child | WS_GROUP | SS_LEFT, 0},
                    ControlTemplate{141, g_button, L"", {60, 60, 140, 10}, g_child | WS_TABSTOP | BS_AUTOCHECKBOX, 0}));
}

TEST(DialogTemplate, OtherNumbers_AreNoDialogs)
{
    for (const UINT id : {101u, 103u, 141u, 143u})
        EXPECT_THROW(DialogTemplate{id}, std::runtime_error) << id;
}

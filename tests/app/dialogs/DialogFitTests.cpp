#include "app/dialogs/MessageDialog.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "tests/app/dialogs/DialogCalls.h"
#include "tests/app/dialogs/DialogFont.h"
#include "tests/app/dialogs/OpenDialog.h"
#include "tests/support/Languages.h"
#include "tests/support/StringResource.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <string>
#include <vector>

using testing::IsEmpty;
using Tests::DialogCalls;
using Tests::Language;
using Tests::OpenDialog;
using Tests::ProgramString;

// Whether the texts have room in their controls. An edit control that is too small closes dialog 102.
//
// On Windows the font of the dialogs, "MS Shell Dlg", is Microsoft Sans Serif. Its letters are taken to be about as
// wide as those of Arial, whose widths Liberation Sans has: that is measured here, and for the scripts that it lacks
// another font as a whole, DejaVu Sans for Arabic and Hebrew, WenQuanYi Micro Hei for Chinese, Japanese and Korean,
// Loma for Thai. The fonts of Windows itself, and those that an East Asian Windows takes, have not been measured.
namespace
{
constexpr UINT g_messageTexts[] = {515, 523, 524, 525, 529, 552};

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

LONG LineHeight(HWND control)
{
    return Measure(control, L"x", 0, DT_SINGLELINE).cy;
}

SIZE RoomIn(HWND control)
{
    RECT area{};
    GetClientRect(control, &area);
    return {area.right, area.bottom};
}

// Lines that a text takes in an edit control, and lines for which it has room.
struct Lines
{
    LONG m_nNeeded;
    LONG m_nRoom;
};

Lines CountLines(HWND edit, const std::wstring& text)
{
    RECT area{};
    SendMessageW(edit, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    const LONG height = LineHeight(edit);
    const SIZE needed = Measure(edit, text, area.right - area.left, DT_EDITCONTROL | DT_WORDBREAK | DT_NOPREFIX);
    return {(needed.cy + height - 1) / height, (area.bottom - area.top) / height};
}

// Left of its text a check box has its square and a gap.
bool FitsCheckBox(HWND box, const std::wstring& text)
{
    const SIZE size = Measure(box, text, 0, DT_SINGLELINE);
    return size.cx + GetSystemMetrics(SM_CXMENUCHECK) + 4 <= RoomIn(box).cx && size.cy <= RoomIn(box).cy;
}

bool FitsLine(HWND control, const std::wstring& text)
{
    const SIZE size = Measure(control, text, 0, DT_SINGLELINE | DT_NOPREFIX);
    return size.cx > 0 && size.cx <= RoomIn(control).cx && size.cy <= RoomIn(control).cy;
}

bool HasFont(const wchar_t* face)
{
    const auto found = [](const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM) { return 0; };
    LOGFONTW wanted{};
    wanted.lfCharSet = DEFAULT_CHARSET;
    std::wcsncpy(wanted.lfFaceName, face, LF_FACESIZE - 1);
    const HDC context = GetDC(nullptr);
    const bool isThere = EnumFontFamiliesExW(context, &wanted, +found, 0, 0) == 0;
    ReleaseDC(nullptr, context);
    return isThere;
}

// A font that has the letters of the language, and its Debian package.
struct Font
{
    const wchar_t* m_pFace;
    const char* m_pPackage;
};

Font FontOf(const Language& language)
{
    switch (PRIMARYLANGID(language.m_nId))
    {
    case LANG_CHINESE:
    case LANG_JAPANESE:
    case LANG_KOREAN:
        return {L"WenQuanYi Micro Hei", "fonts-wqy-microhei"};
    case LANG_THAI:
        return {L"Loma", "fonts-tlwg-loma-ttf"};
    case LANG_ARABIC:
    case LANG_HEBREW:
        return {L"DejaVu Sans", "fonts-dejavu-core"};
    default:
        return {L"Liberation Sans", "fonts-liberation"};
    }
}

class LanguageFitTest : public testing::TestWithParam<Language>
{
protected:
    void SetUp() override
    {
        if (!HasFont(m_font.m_pFace))
            GTEST_SKIP() << "no font for this language (Debian package " << m_font.m_pPackage << "): run ./dev install";
    }

    static std::wstring Text(UINT id) { return Tests::StringResource(nullptr, id, GetParam().m_nId).value_or(L""); }

    // The dialog that a person with that language gets.
    void Show(UINT id, DLGPROC procedure, const MessageParameters* parameters) const
    {
        const WORD language = GetParam().m_bRightToLeft ? GetParam().m_nId : Tests::g_english;
        const std::vector<DWORD> dialog = Tests::DialogWithFont(id, language, m_font.m_pFace);
        DialogBoxIndirectParamW(nullptr, reinterpret_cast<const DLGTEMPLATE*>(dialog.data()), nullptr, procedure,
                                reinterpret_cast<LPARAM>(parameters));
    }

    const Font m_font = FontOf(GetParam());
    DialogCalls m_calls;
};
} // namespace

// Otherwise the tests below measure something else.
TEST_P(LanguageFitTest, Font_HasEveryLetter)
{
    const OpenDialog dialog([this] { Show(102, &MessageDialogProc, nullptr); });
    const HDC context = GetDC(dialog.Item(139));
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(dialog.Item(139), WM_GETFONT, 0, 0));
    const HGDIOBJ before = SelectObject(context, font);
    wchar_t face[LF_FACESIZE]{};
    GetTextFaceW(context, LF_FACESIZE, face);
    EXPECT_EQ(std::wstring(face), m_font.m_pFace);
    for (const UINT id : {515, 523, 524, 525, 529, 552, 555, 556})
    {
        std::wstring text = Text(id);
        std::erase_if(text, [](wchar_t c) { return c == L'\r' || c == L'\n'; });
        std::vector<WORD> glyphs(text.size());
        GetGlyphIndicesW(context, text.c_str(), static_cast<int>(text.size()), glyphs.data(),
                         GGI_MARK_NONEXISTING_GLYPHS);
        EXPECT_THAT(glyphs, testing::Not(testing::Contains(0xFFFF))) << "string " << id;
    }
    SelectObject(context, before);
    ReleaseDC(dialog.Item(139), context);
}

TEST_P(LanguageFitTest, MessageTexts_NeedNoMoreLinesThanFit)
{
    // Without parameters the control is empty, whatever happens to the text.
    const OpenDialog dialog([this] { Show(102, &MessageDialogProc, nullptr); });
    for (const UINT id : g_messageTexts)
    {
        const Lines lines = CountLines(dialog.Item(139), Text(id));
        EXPECT_GT(lines.m_nNeeded, 0);
        EXPECT_LE(lines.m_nNeeded, lines.m_nRoom) << "string " << id;
    }
}

TEST_P(LanguageFitTest, MessageTexts_DoNotCloseTheDialog)
{
    for (const UINT id : g_messageTexts)
    {
        DialogCalls::Clear();
        const std::wstring text = Text(id);
        const MessageParameters parameters{text.c_str(), MessageKind::Recovered};
        const OpenDialog dialog([&, this] { Show(102, &MessageDialogProc, &parameters); });
        ASSERT_NE(dialog.Window(), nullptr);
        EXPECT_EQ(dialog.Text(139), text);
        dialog.Run(
            [&]
            {
                UpdateWindow(dialog.Window());
                EXPECT_EQ(SendDlgItemMessageW(dialog.Window(), 139, EM_GETFIRSTVISIBLELINE, 0, 0), 0);
            });
        EXPECT_THAT(m_calls.Ends(), IsEmpty()) << "string " << id;
    }
}

TEST_P(LanguageFitTest, PrivacyPanel_TextsFitTheirControls)
{
    const std::wstring text = Text(555);
    const MessageParameters parameters{text.c_str(), MessageKind::Notice};
    const OpenDialog dialog([&, this] { Show(142, &PrivacyPanelDialogProc, &parameters); });
    EXPECT_TRUE(FitsLine(dialog.Item(139), text));
    EXPECT_TRUE(FitsCheckBox(dialog.Item(141), Text(556)));
}

TEST_P(LanguageFitTest, Link_AddressFitsItsControl)
{
    const MessageParameters parameters{L"", MessageKind::Recovered};
    const OpenDialog dialog([&, this] { Show(102, &MessageDialogProc, &parameters); });
    EXPECT_TRUE(FitsLine(dialog.Item(140), Text(553)));
}

INSTANTIATE_TEST_SUITE_P(All, LanguageFitTest, testing::ValuesIn(Tests::g_languages));

// What the tests above would say of texts that do not fit.
TEST(DialogFit, LongTexts_AreNoticed)
{
    const OpenDialog dialog(102, &MessageDialogProc, nullptr);
    const HWND edit = dialog.Item(139);
    const LONG room = CountLines(edit, L"x").m_nRoom;
    std::wstring text = L"x";
    for (LONG lines = 1; lines <= room + 1; ++lines, text += L"\r\nx")
        EXPECT_EQ(CountLines(edit, text).m_nNeeded, lines);
    EXPECT_TRUE(FitsLine(dialog.Item(140), L"https://support.orvik.example"));
    EXPECT_FALSE(FitsLine(dialog.Item(140), std::wstring(40, L'W')));
    EXPECT_FALSE(FitsLine(dialog.Item(140), L""));
}

TEST(DialogFit, LongCheckBoxText_IsNoticed)
{
    const OpenDialog dialog([] { ShowPrivacyPanelDialog(555, MessageKind::Notice); });
    EXPECT_TRUE(FitsCheckBox(dialog.Item(141), std::wstring(12, L'W')));
    EXPECT_FALSE(FitsCheckBox(dialog.Item(141), std::wstring(24, L'W')));
}

// One line more than the control has room for; with as many as fit the dialog stays.
TEST(DialogFit, OneLineTooMany_ClosesTheDialog)
{
    DialogCalls calls;
    std::wstring text = L"x";
    {
        const OpenDialog dialog(102, &MessageDialogProc, nullptr);
        for (LONG more = CountLines(dialog.Item(139), text).m_nRoom; more > 1; --more)
            text += L"\r\nx";
    }
    DialogCalls::Clear();
    const MessageParameters full{text.c_str(), MessageKind::Recovered};
    {
        const OpenDialog dialog(102, &MessageDialogProc, &full);
        EXPECT_THAT(calls.Ends(), IsEmpty());
    }
    DialogCalls::Clear();
    text += L"\r\nx";
    const MessageParameters tooFull{text.c_str(), MessageKind::Recovered};
    const OpenDialog dialog(102, &MessageDialogProc, &tooFull);
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_THAT(calls.Ends(), testing::Not(IsEmpty()));
}

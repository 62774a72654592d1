#include "tests/events/MessageFile.h"

#include <gtest/gtest.h>

#include <array>

namespace EventMessageTests
{
namespace
{
constexpr DWORD g_dwIdentifiers = 0x10000;
// Success, information, warning and error: the two highest bits of an identifier.
constexpr std::array<DWORD, 4> g_severities = {0x00000000, 0x40000000, 0x80000000, 0xC0000000};
constexpr wchar_t g_entry[] =
    L"Veritor log entry: Firmware intrusion detected\r\nSource: BIOS\r\nTimestamp: 2023/05/01 10:11:12";

class MessageText : public testing::Test
{
protected:
    // What a reader sees of a record with that text.
    [[nodiscard]] std::wstring Shown(const std::wstring& text) const
    {
        return m_file.Message(4, text.c_str()).value_or(L"nothing");
    }

    CMessageFile m_file;
};

TEST_F(MessageText, EveryIdentifierInEverySeverity_IsTheRecordsText)
{
    unsigned resolved = 0;
    for (const DWORD severity : g_severities)
    {
        for (DWORD identifier = 0; identifier < g_dwIdentifiers; ++identifier)
        {
            ASSERT_EQ(m_file.Message(severity | identifier, g_entry), g_entry) << std::hex << (severity | identifier);
            ++resolved;
        }
    }
    EXPECT_EQ(resolved, 262144u);
}

// Their text is shown behind Windows' sentence that there is no description.
TEST_F(MessageText, IdentifierWithBitsBetween_HasNoMessage)
{
    for (const DWORD identifier : {0x00010000u, 0x00020002u, 0x10000004u, 0x20000004u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_EQ(m_file.Message(identifier, g_entry), std::nullopt) << std::hex << identifier;
}

TEST_F(MessageText, LineBreaks_StayWhereTheyAre)
{
    EXPECT_EQ(Shown(L"\r\n first\r\n\r\nsecond\nthird\t. \r\n"), L"\r\n first\r\n\r\nsecond\nthird\t. \r\n");
}

// One insertion, and what it brings is not looked at again. Event Viewer goes on where this ends: it replaces "%1" in
// the result by the text once more, which nobody who writes a record can keep it from.
TEST_F(MessageText, PercentSignsInTheText_AreNotInsertions)
{
    for (const wchar_t* text : {L"%1", L"fan at 100%1", L"%%1", L"%2 %99 %n %t %0 %!", L"100%", L"%1!d!", L"{0} %s %d"})
        EXPECT_EQ(Shown(text), text);
}

TEST_F(MessageText, EmptyText_IsEmpty)
{
    // No characters are also what a missing message gives; the last error tells them apart.
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(m_file.Message(4, L""), std::nullopt);
    EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_MR_MID_NOT_FOUND));
}

TEST_F(MessageText, LongestTextOfARecord_IsWhole)
{
    // More characters ReportEventW refuses.
    std::wstring text(31839, L'x');
    text.back() = L'.';
    EXPECT_EQ(Shown(text), text);
}

TEST_F(MessageText, TextOfAnyScript_IsWhole)
{
    const std::wstring text = L"Прошивка \u4FEE\u5FA9 \u0E44\u0E17\u0E22 \U0001F512 \u00E9";
    EXPECT_EQ(Shown(text), text);
}

TEST_F(MessageText, AnyLanguage_IsServed)
{
    constexpr DWORD languages[] = {MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL),
                                   MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
                                   MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), MAKELANGID(LANG_JAPANESE, SUBLANG_DEFAULT)};
    for (const DWORD language : languages)
        EXPECT_EQ(m_file.Message(0x80000004, g_entry, language), g_entry) << language;
}
} // namespace
} // namespace EventMessageTests

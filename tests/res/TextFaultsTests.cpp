#include "tests/res/TextFaults.h"

#include <gmock/gmock.h>

namespace ResourceTests
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Tests::Language German{"de", 7};
constexpr Tests::Language Hebrew{"he", 13, true};
constexpr Tests::Language English{"en", Tests::g_english};

// What is said of a German text of dialogs, whose English text has one paragraph.
std::vector<std::string> Said(const std::wstring& text)
{
    return FaultsOf(515, text, L"Your keyboard", German);
}

std::wstring TakenForWestern(const std::wstring& text)
{
    char bytes[400]{};
    wchar_t wrong[400]{};
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, bytes, sizeof(bytes), nullptr, nullptr);
    MultiByteToWideChar(1252, 0, bytes, -1, wrong, static_cast<int>(std::size(wrong)));
    return wrong;
}

TEST(TextFaults, GoodTexts_AreNotBlamed)
{
    for (const wchar_t* text : {L"Ihre Tastatur", L"Größe: „Netz“ (groß)", L"l’événement « Désactivé\u00A0»",
                                L"ПО «Veritor»", L"「電源」（USB）", L"”ström”", L"»På«", L"Êtes-vous prêt", L"😀"})
    {
        EXPECT_THAT(Said(text), IsEmpty()) << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, EmptyText_IsBlamed)
{
    EXPECT_THAT(Said(L""), ElementsAre("empty"));
}

TEST(TextFaults, EnglishText_IsBlamed)
{
    EXPECT_THAT(Said(L"Your keyboard"), ElementsAre("English"));
    EXPECT_THAT(FaultsOf(515, L"Your keyboard", L"Your keyboard", English), IsEmpty());
}

TEST(TextFaults, TranslatedName_IsBlamed)
{
    EXPECT_THAT(FaultsOf(505, L"ORVIKNOTIFICATIONS", L"ORVIKNOTIFICATIONS", German), IsEmpty());
    EXPECT_THAT(FaultsOf(505, L"ORVIKMELDUNGEN", L"ORVIKNOTIFICATIONS", German), ElementsAre("another name"));
}

TEST(TextFaults, OneCharacterTooMany_IsBlamed)
{
    const std::pair<unsigned, size_t> rooms[] = {{500, 99},  {507, 127}, {501, 259},
                                                 {528, 259}, {509, 519}, {552, 2047}};
    for (const auto& [id, room] : rooms)
    {
        EXPECT_THAT(FaultsOf(id, std::wstring(room, L'x'), L"", English), IsEmpty()) << id;
        EXPECT_THAT(FaultsOf(id, std::wstring(room + 1, L'x'), L"", English), ElementsAre("too long")) << id;
    }
}

TEST(TextFaults, OtherParagraphs_AreBlamed)
{
    const auto said = [](const std::wstring& text) { return FaultsOf(523, text, L"One.\r\n\r\nTwo.", German); };
    EXPECT_THAT(said(L"Eins.\r\n\r\nZwei."), IsEmpty());
    for (const wchar_t* text : {L"Eins. Zwei.", L"Eins.\r\nZwei.", L"Eins.\n\nZwei.", L"Eins.\r\n\r\n\r\nZwei.",
                                L"Eins.\r\n\r\nZwei.\r\n\r\nDrei."})
    {
        EXPECT_THAT(said(text), ElementsAre("other paragraphs")) << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, WronglyDecodedTexts_AreBlamed)
{
    for (const wchar_t* text : {L"Größe", L"Événement à éviter", L"電源アダプター", L"прошивка", L"υλικολογισμικό",
                                L"تحديث", L"ดับ", L"źródło", L"עדכון"})
    {
        const std::wstring wrong = TakenForWestern(text);
        EXPECT_THAT(Said(wrong), testing::Contains("wrongly decoded")) << testing::PrintToString(wrong);
        EXPECT_THAT(Said(text), IsEmpty()) << testing::PrintToString(std::wstring(text));
    }
    EXPECT_THAT(Said(L"Größe und GrÃ¶ße"), ElementsAre("wrongly decoded"));
    EXPECT_THAT(Said(L"Gr\u0094ße"), ElementsAre("wrongly decoded"));
}

TEST(TextFaults, WhatIsNoCharacter_IsBlamed)
{
    for (const wchar_t character : {wchar_t{0xFFFD}, wchar_t{0xE000}, wchar_t{0xF8FF}, wchar_t{0xFFFF}, wchar_t{0}})
    {
        EXPECT_THAT(Said(std::wstring(L"Gr") + character + L"ße"), ElementsAre("no character"));
    }
}

TEST(TextFaults, HalfSurrogatePairs_AreBlamed)
{
    for (const wchar_t* text : {L"a\xD83D", L"\xDE00z", L"\xD83Dz", L"\xDE00\xD83D"})
    {
        EXPECT_THAT(Said(text), ElementsAre("half a surrogate pair")) << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, HalfBrackets_AreBlamed)
{
    for (const wchar_t* text : {L"eins (zwei", L"eins) zwei", L")eins(", L"(eins]", L"「電源", L"電源）"})
    {
        EXPECT_THAT(Said(text), ElementsAre("half a pair of brackets")) << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, HalfQuotations_AreBlamed)
{
    for (const wchar_t* text : {L"„eins", L"eins”", L"“eins” zwei“", L"\"eins", L"«eins", L"eins»", L"‹eins", L"‚eins"})
    {
        EXPECT_THAT(Said(text), ElementsAre("half a pair of quotation marks"))
            << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, StrayBlanks_AreBlamed)
{
    for (const wchar_t* text : {L" eins", L"eins ", L"eins  zwei", L"eins\u00A0"})
    {
        EXPECT_THAT(Said(text), ElementsAre("stray blank")) << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, QuestionMarks_AreBlamed)
{
    for (const wchar_t* text : {L"USB-C? Anschluss", L"USB-C？", L"؟", L"¿"})
    {
        EXPECT_THAT(Said(text), testing::Contains("question mark")) << testing::PrintToString(std::wstring(text));
    }
}

TEST(TextFaults, MessageBoxOfWrongDirection_IsBlamed)
{
    const std::wstring text = L"חדירה";
    const std::wstring marked = L"\u200F\u200F" + text;
    EXPECT_THAT(FaultsOf(508, marked, L"Intrusion", Hebrew), IsEmpty());
    EXPECT_THAT(FaultsOf(523, text, L"Intrusion", Hebrew), IsEmpty());
    EXPECT_THAT(FaultsOf(508, text, L"Intrusion", Hebrew), ElementsAre("direction of the message box"));
    EXPECT_THAT(FaultsOf(508, L"\u200F" + text, L"Intrusion", Hebrew), ElementsAre("direction of the message box"));
    EXPECT_THAT(FaultsOf(523, marked, L"Intrusion", Hebrew), ElementsAre("direction of the message box"));
    EXPECT_THAT(FaultsOf(508, marked, L"Intrusion", German), ElementsAre("direction of the message box"));
}

} // namespace

} // namespace ResourceTests

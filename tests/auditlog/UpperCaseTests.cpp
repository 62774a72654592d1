#include "wmievents/UpperCase.h"

#include "platform/ComApartment.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using Notifications::OrvikWmiEvents::UpperCase;

TEST(UpperCase, Letters_AreMadeUpperCaseOneByOne)
{
    const std::pair<std::wstring, std::wstring> texts[] = {{L"", L""},
                                                           {L"warn", L"WARN"},
                                                           {L"WaRn 12:00", L"WARN 12:00"},
                                                           {L"\x00E9\x03B1\x0436", L"\x00C9\x0391\x0416"},
                                                           {L"\x20AC\x4E2D", L"\x20AC\x4E2D"},
                                                           {L"\x01\x1F\t\r\n", L"\x01\x1F\t\r\n"},
                                                           {std::wstring(L"a\0b", 3), std::wstring(L"A\0B", 3)}};
    for (const auto& [text, upper] : texts)
        EXPECT_EQ(UpperCase(text), upper);
}

TEST(UpperCase, SharpS_StaysOneLetter)
{
    EXPECT_EQ(UpperCase(L"stra\x00DF"
                        L"e")
                  .size(),
              6u);
}

TEST(UpperCase, UnpairedSurrogates_StayWhereTheyAre)
{
    const std::wstring text = L"a\xD800"
                              L"b\xDC00"
                              L"c\xD83D\xDE00";
    EXPECT_EQ(UpperCase(text), L"A\xD800"
                               L"B\xDC00"
                               L"C\xD83D\xDE00");
}

TEST(UpperCase, LongText_IsMadeUpperCaseToItsEnd)
{
    EXPECT_EQ(UpperCase(std::wstring(100000, L'x')), std::wstring(100000, L'X'));
}

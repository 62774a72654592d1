#include "res/Resource.h"
#include "tests/res/AgentModule.h"
#include "tests/res/EnglishTexts.h"
#include "tests/support/StringResource.h"

#include <gtest/gtest.h>

#include <optional>

namespace ResourceTests
{

namespace
{

constexpr WORD StringsPerBlock = 16;

class StringTable : public testing::Test
{
protected:
    std::optional<std::wstring> Text(unsigned id, WORD language) const
    {
        return Tests::StringResource(m_agent.Handle(), id, language);
    }

    std::wstring Loaded(unsigned id, int capacity) const
    {
        std::wstring text(static_cast<size_t>(capacity), L'\0');
        text.resize(static_cast<size_t>(LoadStringW(m_agent.Handle(), id, text.data(), capacity)));
        return text;
    }

    CAgentModule m_agent;
};

TEST_F(StringTable, English_HoldsEveryTextToTheLetter)
{
    ASSERT_EQ(IDS_LAST - IDS_FIRST + 1, static_cast<int>(EnglishTexts().size()));
    for (const EnglishText& expected : EnglishTexts())
    {
        const std::optional<std::wstring> text = Text(expected.id, English);
        ASSERT_TRUE(text.has_value()) << "string " << expected.id;
        EXPECT_EQ(*text, expected.text) << "string " << expected.id;
    }
}

TEST_F(StringTable, English_HoldsNothingElse)
{
    for (const WORD block : m_agent.Names(TypeNumber(RT_STRING)))
    {
        for (unsigned index = 0; index < StringsPerBlock; ++index)
        {
            const unsigned id = (block - 1u) * StringsPerBlock + index;
            if (id < IDS_FIRST || id > IDS_LAST)
            {
                EXPECT_EQ(Text(id, English).value_or(L"absent"), L"") << "string " << id;
            }
        }
    }
}

TEST_F(StringTable, LoadString_EnglishUser_GetsTheTexts)
{
    if (PRIMARYLANGID(GetUserDefaultUILanguage()) != LANG_ENGLISH)
    {
        GTEST_SKIP() << "The user interface of this session is not in English";
    }
    for (const EnglishText& expected : EnglishTexts())
    {
        EXPECT_EQ(Loaded(expected.id, 2048), expected.text) << "string " << expected.id;
    }
}

} // namespace

} // namespace ResourceTests

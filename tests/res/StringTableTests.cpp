#include "res/Resource.h"
#include "tests/res/AgentModule.h"
#include "tests/res/EnglishTexts.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <optional>

namespace ResourceTests
{

namespace
{

constexpr WORD StringsPerBlock = 16;

class StringTable : public testing::Test
{
protected:
    // The text as it lies in the module, in exactly one language; nothing when the block is absent.
    std::optional<std::wstring> Text(unsigned id, WORD language) const
    {
        const auto block = static_cast<WORD>(id / StringsPerBlock + 1);
        Bytes bytes = m_agent.Resource(TypeNumber(RT_STRING), block, language);
        for (unsigned index = 0; bytes.size() >= sizeof(WORD); ++index)
        {
            WORD length = 0;
            std::memcpy(&length, bytes.data(), sizeof(length));
            bytes = bytes.subspan(sizeof(length));
            if (bytes.size() < length * sizeof(wchar_t))
            {
                return std::nullopt;
            }
            if (index == id % StringsPerBlock)
            {
                return std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), length);
            }
            bytes = bytes.subspan(length * sizeof(wchar_t));
        }
        return std::nullopt;
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

TEST_F(StringTable, EveryLanguage_HoldsEveryId)
{
    const std::vector<WORD> blocks = m_agent.Names(TypeNumber(RT_STRING));
    ASSERT_FALSE(blocks.empty());
    for (const WORD language : m_agent.Languages(TypeNumber(RT_STRING), blocks.front()))
    {
        for (unsigned id = IDS_FIRST; id <= IDS_LAST; ++id)
        {
            EXPECT_NE(Text(id, language).value_or(L""), L"") << "string " << id << ", language " << language;
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

// The buffers that the texts are loaded into: 100 for title and class, 128 for toast titles, 260 for the toast texts of
// the smart adapter, 520 for those of USB-C, 2,048 for the texts of dialogs, each with its terminator.
TEST_F(StringTable, Texts_FitTheBuffersTheyAreLoadedInto)
{
    std::map<unsigned, size_t> capacity = {{IDS_APP_TITLE, 100}, {IDS_WINDOW_CLASS, 100}, {IDS_USBC_TITLE, 128}};
    for (const unsigned id : {501u, 502u, 503u, 528u})
    {
        capacity[id] = 260;
    }
    for (const unsigned id : {509u, 510u, 511u, 512u, 513u, 517u, 518u, 519u, 520u, 521u, 526u, 527u})
    {
        capacity[id] = 520;
    }
    for (unsigned id = IDS_FIRST; id <= IDS_LAST; ++id)
    {
        const size_t room = capacity.contains(id) ? capacity[id] : 2048;
        EXPECT_LT(Text(id, English).value_or(L"").size(), room) << "string " << id;
    }
}

} // namespace

} // namespace ResourceTests

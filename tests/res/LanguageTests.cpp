#include "res/Resource.h"
#include "tests/res/AgentModule.h"
#include "tests/res/EnglishTexts.h"
#include "tests/res/TextFaults.h"
#include "tests/support/Languages.h"
#include "tests/support/StringResource.h"

#include <gmock/gmock.h>

namespace ResourceTests
{

namespace
{

using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

std::vector<WORD> AllLanguages()
{
    std::vector<WORD> ids;
    for (const Tests::Language& language : Tests::g_languages)
    {
        ids.push_back(language.m_nId);
    }
    return ids;
}

TEST(Languages, Strings_AreThereInThirtyFourLanguages)
{
    const CAgentModule agent;
    const std::vector<WORD> blocks = agent.Names(TypeNumber(RT_STRING));
    ASSERT_FALSE(blocks.empty());
    for (const WORD block : blocks)
    {
        EXPECT_THAT(agent.Languages(TypeNumber(RT_STRING), block), UnorderedElementsAreArray(AllLanguages())) << block;
    }
}

TEST(Languages, Dialogs_RightToLeftLanguagesHaveTheirOwn)
{
    const CAgentModule agent;
    for (const WORD dialog : {WORD{IDD_MESSAGE}, WORD{IDD_PRIVACY_PANEL}})
    {
        EXPECT_THAT(agent.Languages(TypeNumber(RT_DIALOG), dialog), testing::UnorderedElementsAre(1, 13, English));
    }
}

class LanguageTexts : public testing::TestWithParam<Tests::Language>
{
protected:
    std::wstring Text(unsigned id, WORD language) const
    {
        return Tests::StringResource(m_agent.Handle(), id, language).value_or(L"");
    }

    CAgentModule m_agent;
};

TEST_P(LanguageTexts, EveryId_IsSoundAndTranslated)
{
    ASSERT_EQ(EnglishTexts().size(), 59u);
    for (const EnglishText& english : EnglishTexts())
    {
        const std::wstring text = Text(english.id, GetParam().m_nId);
        EXPECT_THAT(FaultsOf(english.id, text, english.text, GetParam()), IsEmpty())
            << "string " << english.id << ": " << testing::PrintToString(text);
    }
}

// The two have one English text; a person who sees both must not wonder about the difference.
TEST_P(LanguageTexts, SameEnglishText_IsTranslatedTheSame)
{
    EXPECT_EQ(Text(IDS_VERITOR_SHUT_DOWN_TO_REPAIR, GetParam().m_nId),
              Text(IDS_VERITOR_SHUT_DOWN_TO_RECOVER, GetParam().m_nId));
}

INSTANTIATE_TEST_SUITE_P(All, LanguageTexts, testing::ValuesIn(Tests::g_languages));

// Texts of one language under the number of another would pass all of the above.
TEST(Languages, Texts_DifferBetweenLanguages)
{
    const CAgentModule agent;
    for (size_t i = 0; i < Tests::g_languages.size(); ++i)
    {
        for (size_t j = 0; j < i; ++j)
        {
            EXPECT_NE(Tests::StringResource(agent.Handle(), IDS_VERITOR_RECOVERED, Tests::g_languages[i].m_nId),
                      Tests::StringResource(agent.Handle(), IDS_VERITOR_RECOVERED, Tests::g_languages[j].m_nId))
                << Tests::g_languages[i].m_pTag << " and " << Tests::g_languages[j].m_pTag;
        }
    }
}

} // namespace

} // namespace ResourceTests

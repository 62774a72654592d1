#include "simulator/doubles/WmiQuery.h"

#include "simulator/doubles/WmiNamespaces.h"
#include "simulator/model/Facts.h"

#include <gmock/gmock.h>

namespace Simulator
{
namespace
{
using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

TEST(WmiQuery, Parse_ReadsClassAndEventId)
{
    const auto query = WmiQuery::Parse("SELECT * FROM orvikBEvnt WHERE EventID = 131074");
    ASSERT_TRUE(query);
    EXPECT_THAT(query->m_lstProperties, ElementsAre("*"));
    EXPECT_EQ(query->m_strClass, "orvikBEvnt");
    EXPECT_THAT(query->m_nEventId, Optional(131074));
}

TEST(WmiQuery, Parse_TakesAnyCaseAndBlanks)
{
    const auto query = WmiQuery::Parse("  select Version ,Caption\tfrom Win32_OperatingSystem  where eventid=-1");
    ASSERT_TRUE(query);
    EXPECT_THAT(query->m_lstProperties, ElementsAre("Version", "Caption"));
    EXPECT_EQ(query->m_strClass, "Win32_OperatingSystem");
    EXPECT_THAT(query->m_nEventId, Optional(-1));
}

TEST(WmiQuery, Parse_WithoutConditionHasNoEventId)
{
    const auto query = WmiQuery::Parse("SELECT * FROM OrvikBIOS_BIOSEvent");
    ASSERT_TRUE(query);
    EXPECT_EQ(query->m_nEventId, std::nullopt);
}

TEST(WmiQuery, Parse_OfACutClassNameReadsTheCutName)
{
    const auto query = WmiQuery::Parse("SELECT * FROM OrvikBIOS_BIOSEv");
    ASSERT_TRUE(query);
    EXPECT_FALSE(query->Matches("OrvikBIOS_BIOSEvent", std::nullopt));
    EXPECT_TRUE(query->Matches("OrvikBIOS_BIOSEv", std::nullopt));
}

TEST(WmiQuery, Parse_OfAnythingElseGivesNothing)
{
    for (const char* text : {"", "SELECT", "SELECT * FROM", "SELECT FROM orvikBEvnt", "* FROM orvikBEvnt",
                             "SELECT * orvikBEvnt", "SELECT * FROM orvik-BEvnt", "SELECT * FROM orvikBEvnt WHERE",
                             "SELECT * FROM orvikBEvnt WHERE EventID =", "SELECT * FROM orvikBEvnt WHERE EventID = x",
                             "SELECT * FROM orvikBEvnt WHERE EventID = 3 x", "SELECT * FROM orvikBEvnt WHERE Other = 3",
                             "SELECT * FROM orvikBEvnt 3"})
        EXPECT_FALSE(WmiQuery::Parse(text)) << text;
}

TEST(WmiQuery, Matches_ComparesClassWithoutCaseAndIdWhenAsked)
{
    const auto filtered = WmiQuery::Parse("SELECT * FROM orvikBEvnt WHERE EventID = 3");
    ASSERT_TRUE(filtered);
    EXPECT_TRUE(filtered->Matches("ORVIKBEVNT", 3));
    EXPECT_FALSE(filtered->Matches("orvikBEvnt", 4));
    EXPECT_FALSE(filtered->Matches("orvikBEvnt", std::nullopt));
    EXPECT_FALSE(filtered->Matches("orvikBEvn", 3));
    const auto all = WmiQuery::Parse("SELECT * FROM orvikBEvnt");
    ASSERT_TRUE(all);
    EXPECT_TRUE(all->Matches("orvikBEvnt", 4));
    EXPECT_TRUE(all->Matches("orvikBEvnt", std::nullopt));
}

TEST(WmiNamespaces, NormalName_IsTheSameForEachSpelling)
{
    EXPECT_THAT(NormalNamespace(R"(ROOT\WMI)"), Optional(Eq(R"(root\wmi)")));
    EXPECT_THAT(NormalNamespace(R"(\\.\root\wmi)"), Optional(Eq(R"(root\wmi)")));
    EXPECT_THAT(NormalNamespace("root/wmi"), Optional(Eq(R"(root\wmi)")));
    EXPECT_THAT(NormalNamespace("root"), Optional(Eq("root")));
}

TEST(WmiNamespaces, NormalName_OfAnUnreadablePathIsNothing)
{
    for (const char* path : {"", "wmi", R"(ROOT\\WMI)", R"(root\)", R"(rootwmi)", R"(\\server\root\wmi)"})
        EXPECT_FALSE(NormalNamespace(path)) << path;
}

TEST(WmiNamespaces, Existence_IsAFact)
{
    Facts::Instance().Clear();
    for (const char* name :
         {R"(root\cimv2)", R"(root\wmi)", R"(root\cimv2\security\microsofttpm)", R"(root\orvik\instrumentedbios)",
          R"(root\orvik\instrumentedsecurity)", R"(root\cimv2\security\microsoftvolumeencryption)",
          R"(root\orvik\instrumentedservices\v1)"})
        EXPECT_TRUE(NamespaceExists(name)) << name;
    EXPECT_FALSE(NamespaceExists(R"(root\other)"));
    Facts::Instance().Set("/wmi/namespaces", {R"(ROOT\Other)", 3});
    EXPECT_TRUE(NamespaceExists(R"(root\other)"));
    EXPECT_FALSE(NamespaceExists(R"(root\wmi)"));
}
} // namespace
} // namespace Simulator

#include "simulator/model/Facts.h"

#include <gtest/gtest.h>

namespace
{
using nlohmann::json;
using Simulator::Facts;

class FactsTest : public testing::Test
{
protected:
    void SetUp() override { m_facts.Clear(); }
    void TearDown() override { m_facts.Clear(); }

    Facts& m_facts = Facts::Instance();
};

TEST_F(FactsTest, UnknownFact_IsNull)
{
    EXPECT_TRUE(m_facts.Get("/nothing").is_null());
    EXPECT_TRUE(m_facts.Get("/nothing/below/it").is_null());
}

TEST_F(FactsTest, SetFact_IsThereWithItsPath)
{
    m_facts.Set("/commands/SmartAdapter.Status", {{"answer", {{"i4", 2}}}});
    EXPECT_EQ(m_facts.Get("/commands/SmartAdapter.Status/answer/i4"), 2);
    EXPECT_TRUE(m_facts.Get("/commands").contains("SmartAdapter.Status"));
    EXPECT_TRUE(m_facts.Get("/commands/SmartAdapter").is_null());
}

TEST_F(FactsTest, SetTwice_LastValueHolds)
{
    m_facts.Set("/a", 1);
    m_facts.Set("/a", "text");
    EXPECT_EQ(m_facts.Get("/a"), "text");
}

TEST_F(FactsTest, Merge_OverlaysObjectsReplacesValuesAndRemovesNulls)
{
    m_facts.Merge(json::parse(R"({"a": {"x": 1, "y": 2}, "b": [1, 2], "c": 3})"));
    m_facts.Merge(json::parse(R"({"a": {"y": 5}, "b": [9], "c": null})"));
    EXPECT_EQ(m_facts.Get("/a"), json::parse(R"({"x": 1, "y": 5})"));
    EXPECT_EQ(m_facts.Get("/b"), json::parse("[9]"));
    EXPECT_TRUE(m_facts.Get("/c").is_null());
}

TEST_F(FactsTest, Clear_ForgetsEverything)
{
    m_facts.Set("/a/b", 1);
    m_facts.Clear();
    EXPECT_EQ(m_facts.Get(""), json::object());
}

TEST_F(FactsTest, PathWithoutSlash_IsRefused)
{
    EXPECT_THROW((void)m_facts.Get("a"), json::parse_error);
}
} // namespace

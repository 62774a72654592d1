#include "simulator/machine/EventLogRecord.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace
{
using namespace Simulator;

nlohmann::json RoundTrip(const nlohmann::json& json)
{
    return ToJson(RecordFromJson(json));
}

TEST(EventLogRecord, WholeRecord_IsWrittenAsItWasRead)
{
    const nlohmann::json whole = {{"source", "Orvik Veritor"}, {"type", "warning"},     {"category", 65535},
                                  {"event-id", 0xFFFFFFFF},    {"strings", {"a", "b"}}, {"data", "00FF"},
                                  {"time", 1'700'000'000}};
    EXPECT_EQ(RoundTrip(whole), whole);
}

TEST(EventLogRecord, MissingKeys_AreThoseOfAnEmptyRecord)
{
    const nlohmann::json empty = RoundTrip(nlohmann::json::object());
    EXPECT_EQ(empty.at("source"), "");
    EXPECT_EQ(empty.at("type"), "information");
    EXPECT_EQ(empty.at("event-id"), 0);
    EXPECT_TRUE(empty.at("strings").empty());
    EXPECT_FALSE(empty.contains("damage"));
}

TEST(EventLogRecord, Damage_IsKept)
{
    const nlohmann::json damage = {
        {"length", 0}, {"string-offset", 4'000'000'000}, {"string-count", 0}, {"unterminated", true}};
    EXPECT_EQ(RoundTrip({{"damage", damage}}).at("damage"), damage);
}

TEST(EventLogRecord, Raw_IsKept)
{
    EXPECT_EQ(RoundTrip({{"raw", "0011"}}), (nlohmann::json{{"raw", "0011"}}));
}

TEST(EventLogRecord, TypesHaveNamesOrNumbers)
{
    const std::pair<const char*, int> types[] = {{"error", 1},   {"warning", 2},       {"information", 4},
                                                 {"success", 0}, {"audit-success", 8}, {"audit-failure", 16}};
    for (const auto& [name, type] : types)
    {
        EXPECT_EQ(RecordFromJson({{"type", name}}).m_wType, type);
        EXPECT_EQ(EventTypeName(static_cast<WORD>(type)), name);
    }
    EXPECT_EQ(RoundTrip({{"type", 99}}).at("type"), 99);
}

TEST(EventLogRecord, NegativeEventId_IsTheSame32Bits)
{
    EXPECT_EQ(RecordFromJson({{"event-id", -2}}).m_dwEventId, 0xFFFFFFFEu);
}

TEST(EventLogRecord, WhatIsNoRecord_IsRefused)
{
    const nlohmann::json mistakes[] = {nlohmann::json::array(),
                                       {{"sauce", "x"}},
                                       {{"source", 1}},
                                       {{"strings", "text"}},
                                       {{"strings", {1}}},
                                       {{"type", "fatal"}},
                                       {{"type", 65536}},
                                       {{"category", -1}},
                                       {{"event-id", 4294967296}},
                                       {{"event-id", "7"}},
                                       {{"time", 1.5}},
                                       {{"data", "0"}},
                                       {{"data", "0g"}},
                                       {{"raw", ""}},
                                       {{"raw", "xx"}},
                                       {{"raw", "00"}, {"source", "x"}},
                                       {{"damage", {{"width", 1}}}},
                                       {{"damage", {{"length", -1}}}},
                                       {{"damage", {{"string-count", 65536}}}},
                                       {{"damage", true}}};
    for (const nlohmann::json& mistake : mistakes)
        EXPECT_THROW((void)RecordFromJson(mistake), std::invalid_argument) << mistake;
}

TEST(EventLogRecord, Hexadecimal_EachByteEachWay)
{
    const BYTE bytes[] = {0x00, 0x0F, 0xF0, 0xFF};
    EXPECT_EQ(ToHexadecimal(bytes, sizeof(bytes)), "000FF0FF");
    EXPECT_THAT(FromHexadecimal("000FF0ff"), testing::ElementsAreArray(bytes));
    EXPECT_TRUE(FromHexadecimal("").empty());
}
} // namespace

#include "wmievents/EventLogRecords.h"

#include "tests/support/ReadableEventLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>
#include <vector>

using Notifications::OrvikWmiEvents::ForEachRecordOf;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::BytesOf;
using TestSupport::RecordBytes;

namespace
{
using Seen = std::pair<int, std::wstring>;

constexpr const wchar_t* g_source = L"Source";

RecordBytes Join(std::initializer_list<RecordBytes> records)
{
    RecordBytes bytes;
    for (const RecordBytes& record : records)
        bytes.insert(bytes.end(), record.begin(), record.end());
    return bytes;
}

// Only what lies inside a block of exactly that size may be read.
std::vector<Seen> Walk(const RecordBytes& records)
{
    std::vector<Seen> seen;
    ForEachRecordOf(g_source, records,
                    [&](int eventId, const std::wstring& text) { seen.emplace_back(eventId, text); });
    return seen;
}

RecordBytes Record(DWORD eventId, const wchar_t* text)
{
    return BytesOf({g_source, eventId, {text}});
}

RecordBytes With(RecordBytes record, DWORD EVENTLOGRECORD::* field, DWORD value)
{
    TestSupport::SetField(record, field, value);
    return record;
}

const RecordBytes g_first = Record(1, L"first");
const RecordBytes g_last = Record(9, L"last");
} // namespace

TEST(EventLogRecords, SeveralInABuffer_ComeInTheirOrder)
{
    EXPECT_THAT(
        Walk(Join({g_first, Record(2, L""), Record(3, L"third, longer than the others"), g_last})),
        ElementsAre(Seen(1, L"first"), Seen(2, L""), Seen(3, L"third, longer than the others"), Seen(9, L"last")));
}

TEST(EventLogRecords, EmptyBuffer_HasNone)
{
    EXPECT_THAT(Walk({}), IsEmpty());
}

TEST(EventLogRecords, OtherSources_AreLeftOut)
{
    for (const wchar_t* source : {L"source", L"SOURCE", L"Sourc", L"Source ", L" Source", L"Source2", L"Other", L""})
        EXPECT_THAT(Walk(Join({g_first, BytesOf({source, 2, {L"second"}}), g_last})),
                    ElementsAre(Seen(1, L"first"), Seen(9, L"last")))
            << testing::PrintToString(std::wstring(source));
}

TEST(EventLogRecords, Number_IsTakenWithAllItsBits)
{
    EXPECT_THAT(Walk(Join({Record(0xC0000004, L"a"), Record(0x7FFFFFFF, L"b"), Record(0xFFFFFFFF, L"c")})),
                ElementsAre(Seen(-1073741820, L"a"), Seen(0x7FFFFFFF, L"b"), Seen(-1, L"c")));
}

TEST(EventLogRecords, SeveralTexts_TheFirstCounts)
{
    EXPECT_THAT(Walk(BytesOf({g_source, 1, {L"first", L"second"}})), ElementsAre(Seen(1, L"first")));
    EXPECT_THAT(Walk(BytesOf({g_source, 1, {L"", L"second"}})), ElementsAre(Seen(1, L"")));
}

TEST(EventLogRecords, WithoutTexts_IsLeftOut)
{
    EXPECT_THAT(Walk(Join({BytesOf({g_source, 1, {}}), g_last})), ElementsAre(Seen(9, L"last")));
    RecordBytes record = g_first;
    TestSupport::SetStringCount(record, 0);
    EXPECT_THAT(Walk(Join({record, g_last})), ElementsAre(Seen(9, L"last")));
}

TEST(EventLogRecords, LengthThatIsNone_EndsTheWalk)
{
    for (const DWORD length : std::initializer_list<DWORD>{0u, 1u, 4u, static_cast<DWORD>(sizeof(EVENTLOGRECORD)) - 1})
        EXPECT_THAT(Walk(Join({g_first, With(g_first, &EVENTLOGRECORD::Length, length), g_last})),
                    ElementsAre(Seen(1, L"first")))
            << length;
}

TEST(EventLogRecords, LengthBeyondTheBuffer_EndsTheWalk)
{
    const auto size = static_cast<DWORD>(g_last.size());
    for (const DWORD length : std::initializer_list<DWORD>{size + 1, size + 4, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_THAT(Walk(Join({g_first, With(g_last, &EVENTLOGRECORD::Length, length)})),
                    ElementsAre(Seen(1, L"first")))
            << length;
}

TEST(EventLogRecords, LengthOfTheFixedFieldsAlone_HasNoSource)
{
    const RecordBytes bare = With(RecordBytes(sizeof(EVENTLOGRECORD)), &EVENTLOGRECORD::Length, sizeof(EVENTLOGRECORD));
    EXPECT_THAT(Walk(Join({bare, g_last})), ElementsAre(Seen(9, L"last")));
}

TEST(EventLogRecords, LengthThatIsNoMultipleOfFour_IsFollowedByTheNextRecord)
{
    for (std::size_t more = 1; more < 4; ++more)
    {
        RecordBytes record = g_first;
        record.resize(record.size() + more);
        TestSupport::SetField(record, &EVENTLOGRECORD::Length, static_cast<DWORD>(record.size()));
        EXPECT_THAT(Walk(Join({record, g_last})), ElementsAre(Seen(1, L"first"), Seen(9, L"last"))) << more;
    }
}

TEST(EventLogRecords, EndOfTheBufferInsideARecord_EndsTheWalk)
{
    const RecordBytes two = Join({g_first, g_last});
    for (std::size_t size = 0; size < two.size(); ++size)
    {
        const std::vector<Seen> seen = Walk(RecordBytes(two.begin(), two.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(seen.size(), size >= g_first.size() ? 1u : 0u) << size;
    }
}

TEST(EventLogRecords, TextOutsideTheRecord_IsLeftOut)
{
    const auto size = static_cast<DWORD>(g_first.size());
    for (const DWORD offset :
         std::initializer_list<DWORD>{size - 1, size, size + 100, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu})
        EXPECT_THAT(Walk(Join({With(g_first, &EVENTLOGRECORD::StringOffset, offset), g_last})),
                    ElementsAre(Seen(9, L"last")))
            << offset;
}

TEST(EventLogRecords, TextThatBeginsAnywhere_IsReadToItsZero)
{
    // The source's name.
    EXPECT_THAT(Walk(With(g_first, &EVENTLOGRECORD::StringOffset, sizeof(EVENTLOGRECORD))),
                ElementsAre(Seen(1, g_source)));
    // Between two characters.
    EXPECT_THAT(Walk(With(g_first, &EVENTLOGRECORD::StringOffset, sizeof(EVENTLOGRECORD) + 1)).at(0).second.size(), 5u);
}

TEST(EventLogRecords, TextWithoutTerminator_IsLeftOut)
{
    RecordBytes record = BytesOf({g_source, 1, {L"text"}});
    // It ends with the record's last text character: what follows would have been its zero.
    const auto text = static_cast<DWORD>(sizeof(EVENTLOGRECORD) + (7 + 9) * sizeof(wchar_t));
    record.resize(text + 4 * sizeof(wchar_t));
    TestSupport::SetField(record, &EVENTLOGRECORD::Length, static_cast<DWORD>(record.size()));
    EXPECT_THAT(Walk(Join({record, g_last})), ElementsAre(Seen(9, L"last")));
    EXPECT_THAT(Walk(record), IsEmpty());
    // Half a character is none either.
    record.resize(record.size() + 1);
    TestSupport::SetField(record, &EVENTLOGRECORD::Length, static_cast<DWORD>(record.size()));
    EXPECT_THAT(Walk(record), IsEmpty());
    record.resize(record.size() + 1);
    TestSupport::SetField(record, &EVENTLOGRECORD::Length, static_cast<DWORD>(record.size()));
    EXPECT_THAT(Walk(record), ElementsAre(Seen(1, L"text")));
}

TEST(EventLogRecords, SourceWithoutTerminator_IsLeftOut)
{
    RecordBytes record = g_first;
    record.resize(sizeof(EVENTLOGRECORD) + 6 * sizeof(wchar_t));
    TestSupport::SetField(record, &EVENTLOGRECORD::Length, static_cast<DWORD>(record.size()));
    EXPECT_THAT(Walk(Join({record, g_last})), ElementsAre(Seen(9, L"last")));
}

TEST(EventLogRecords, WhatTheHandlerRaises_ComesOut)
{
    const auto raise = [](int, const std::wstring&) { throw std::bad_alloc(); };
    EXPECT_THROW(ForEachRecordOf(g_source, g_first, raise), std::bad_alloc);
}

TEST(EventLogRecords, BytesOfAnyKind_EndSomewhere)
{
    unsigned state = 12345;
    for (int round = 0; round < 2000; ++round)
    {
        RecordBytes bytes = Join({g_first, g_last, BytesOf({g_source, 5, {L"a", L"b"}})});
        for (int i = 0; i < 8; ++i)
        {
            state = state * 1664525 + 1013904223;
            bytes[(state >> 8) % bytes.size()] = static_cast<std::byte>(state >> 24);
        }
        EXPECT_LE(Walk(bytes).size(), bytes.size() / sizeof(EVENTLOGRECORD));
    }
}

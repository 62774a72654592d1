#include "simulator/machine/EventRecordBytes.h"

#include <gmock/gmock.h>

#include <cstring>

namespace
{
using namespace Simulator;
using Bytes = std::vector<BYTE>;

EVENTLOGRECORD HeaderOf(const Bytes& bytes)
{
    EVENTLOGRECORD header{};
    std::memcpy(&header, bytes.data(), sizeof(header));
    return header;
}

DWORD LastNumberOf(const Bytes& bytes)
{
    DWORD number = 0;
    std::memcpy(&number, bytes.data() + bytes.size() - sizeof(number), sizeof(number));
    return number;
}

std::wstring TextAt(const Bytes& bytes, DWORD offset)
{
    return reinterpret_cast<const wchar_t*>(bytes.data() + offset);
}

EventLogRecord RecordOf(std::vector<std::string> strings, std::string data = "")
{
    EventLogRecord record;
    record.m_strSource = "Source";
    record.m_lstStrings = std::move(strings);
    record.m_strData = std::move(data);
    record.m_nTime = 1'700'000'000;
    return record;
}

TEST(EventRecordBytes, Header_IsWindowsOwn)
{
    EventLogRecord record = RecordOf({"text"});
    record.m_wType = EVENTLOG_WARNING_TYPE;
    record.m_wCategory = 3;
    record.m_dwEventId = 0x80000004;
    const Bytes bytes = EventRecordBytes(record, 17);
    const EVENTLOGRECORD header = HeaderOf(bytes);
    EXPECT_EQ(header.Length, bytes.size());
    EXPECT_EQ(header.Reserved, 0x654C664Cu);
    EXPECT_EQ(header.RecordNumber, 17u);
    EXPECT_EQ(header.TimeGenerated, 1'700'000'000u);
    EXPECT_EQ(header.TimeWritten, 1'700'000'000u);
    EXPECT_EQ(header.EventID, 0x80000004u);
    EXPECT_EQ(header.EventType, EVENTLOG_WARNING_TYPE);
    EXPECT_EQ(header.NumStrings, 1);
    EXPECT_EQ(header.EventCategory, 3);
    EXPECT_EQ(header.UserSidLength, 0u);
    EXPECT_EQ(header.DataLength, 0u);
}

TEST(EventRecordBytes, Parts_FollowEachOther)
{
    const Bytes bytes = EventRecordBytes(RecordOf({"one", "", "three"}, "010203"), 1);
    const EVENTLOGRECORD header = HeaderOf(bytes);
    EXPECT_EQ(TextAt(bytes, sizeof(header)), L"Source");
    const std::wstring computer = TextAt(bytes, sizeof(header) + sizeof(L"Source"));
    EXPECT_FALSE(computer.empty());
    EXPECT_GE(header.StringOffset, sizeof(header) + sizeof(L"Source") + (computer.size() + 1) * sizeof(wchar_t));
    EXPECT_EQ(header.StringOffset % sizeof(DWORD), 0u);
    EXPECT_EQ(TextAt(bytes, header.StringOffset), L"one");
    EXPECT_EQ(TextAt(bytes, header.StringOffset + sizeof(L"one")), L"");
    EXPECT_EQ(TextAt(bytes, header.StringOffset + sizeof(L"one") + sizeof(L"")), L"three");
    EXPECT_EQ(header.DataOffset, header.StringOffset + sizeof(L"one") + sizeof(L"") + sizeof(L"three"));
    EXPECT_EQ(header.DataLength, 3u);
    EXPECT_EQ(bytes[header.DataOffset + 2], 3);
}

TEST(EventRecordBytes, AnyLengthOfText_WholeNumberOfDwords_LengthAtTheEnd)
{
    for (std::size_t length = 0; length < 9; ++length)
    {
        const Bytes bytes = EventRecordBytes(RecordOf({std::string(length, 'x')}), 1);
        EXPECT_EQ(bytes.size() % sizeof(DWORD), 0u);
        EXPECT_EQ(HeaderOf(bytes).Length, bytes.size());
        EXPECT_EQ(LastNumberOf(bytes), bytes.size());
    }
}

TEST(EventRecordBytes, NoStrings_CountIsZero)
{
    const EVENTLOGRECORD header = HeaderOf(EventRecordBytes(RecordOf({}), 1));
    EXPECT_EQ(header.NumStrings, 0);
    EXPECT_EQ(header.StringOffset, header.DataOffset);
}

TEST(EventRecordBytes, Damage_IsInTheHeaderAlone)
{
    EventLogRecord record = RecordOf({"text"});
    const Bytes whole = EventRecordBytes(record, 1);
    record.m_damage.m_length = 0;
    record.m_damage.m_stringOffset = 0xFFFFFFF0;
    record.m_damage.m_stringCount = static_cast<WORD>(7);
    const Bytes damaged = EventRecordBytes(record, 1);
    EXPECT_EQ(HeaderOf(damaged).Length, 0u);
    EXPECT_EQ(HeaderOf(damaged).StringOffset, 0xFFFFFFF0u);
    EXPECT_EQ(HeaderOf(damaged).NumStrings, 7);
    EXPECT_EQ(Bytes(damaged.begin() + sizeof(EVENTLOGRECORD), damaged.end()),
              Bytes(whole.begin() + sizeof(EVENTLOGRECORD), whole.end()));
}

TEST(EventRecordBytes, Unterminated_EndsWithTheLastCharacter)
{
    EventLogRecord record = RecordOf({"text"});
    record.m_damage.m_bUnterminated = true;
    const Bytes bytes = EventRecordBytes(record, 1);
    const EVENTLOGRECORD header = HeaderOf(bytes);
    EXPECT_EQ(header.Length, bytes.size());
    EXPECT_EQ(bytes.size(), header.StringOffset + 4 * sizeof(wchar_t));
    EXPECT_EQ(std::memcmp(bytes.data() + header.StringOffset, L"text", 4 * sizeof(wchar_t)), 0);
}

TEST(EventRecordBytes, Raw_IsItself)
{
    EventLogRecord record = RecordOf({"text"});
    record.m_strRaw = "0aFF10";
    EXPECT_THAT(EventRecordBytes(record, 1), testing::ElementsAre(0x0A, 0xFF, 0x10));
}
} // namespace

#include "tests/support/ReadableEventLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD g_dwBackwards = EVENTLOG_SEQUENTIAL_READ | EVENTLOG_BACKWARDS_READ;
constexpr DWORD g_dwForwards = EVENTLOG_SEQUENTIAL_READ | EVENTLOG_FORWARDS_READ;

bool Close(HANDLE log)
{
    return CloseEventLog(log) != FALSE; // NOCHECK(raw-release): the call that the double watches
}

class ReadableEventLogTest : public testing::Test
{
protected:
    ~ReadableEventLogTest() override { EXPECT_EQ(m_log.OpenCount(), 0u); }

    DWORD Read(HANDLE log, DWORD flags, std::size_t size)
    {
        m_lstBuffer.assign(size, std::byte{0xAA});
        const bool isRead =
            ReadEventLogW(log, flags, 0, m_lstBuffer.data(), static_cast<DWORD>(size), &m_dwRead, &m_dwNeeded) != FALSE;
        return isRead ? ERROR_SUCCESS : GetLastError();
    }

    bool Holds(std::vector<RecordBytes> records) const
    {
        RecordBytes expected;
        for (const RecordBytes& record : records)
            expected.insert(expected.end(), record.begin(), record.end());
        return m_dwRead == expected.size() && std::equal(expected.begin(), expected.end(), m_lstBuffer.begin());
    }

    ReadableEventLog m_log;
    RecordBytes m_lstBuffer;
    DWORD m_dwRead = 0;
    DWORD m_dwNeeded = 0;
    const RecordBytes m_first = BytesOf({L"A", 1, {L"one"}});
    const RecordBytes m_second = BytesOf({L"Another source", 2, {}});
    const RecordBytes m_third = BytesOf({L"A", 3, {L"one", L"two"}});
};

TEST(StoredRecord, Bytes_AreThoseOfTheSystem)
{
    const RecordBytes bytes = BytesOf({L"Source", 0xC0000007, {L"a", L"bc"}, EVENTLOG_ERROR_TYPE});
    EVENTLOGRECORD header;
    std::memcpy(&header, bytes.data(), sizeof(header));
    EXPECT_EQ(header.Length, bytes.size());
    EXPECT_EQ(bytes.size() % 4, 0u);
    EXPECT_EQ(std::memcmp(&bytes[bytes.size() - 4], &header.Length, 4), 0);
    EXPECT_EQ(header.Reserved, 0x654C664Cu);
    EXPECT_EQ(header.EventID, 0xC0000007u);
    EXPECT_EQ(header.EventType, EVENTLOG_ERROR_TYPE);
    EXPECT_EQ(header.NumStrings, 2);
    EXPECT_STREQ(reinterpret_cast<const wchar_t*>(&bytes[sizeof(header)]), L"Source");
    const auto* texts = reinterpret_cast<const wchar_t*>(&bytes[header.StringOffset]);
    EXPECT_STREQ(texts, L"a");
    EXPECT_STREQ(texts + 2, L"bc");
}

TEST_F(ReadableEventLogTest, EmptyLog_IsAtItsEnd)
{
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_HANDLE_EOF));
    EXPECT_EQ(m_dwRead, 0u);
    EXPECT_TRUE(Close(log));
}

TEST_F(ReadableEventLogTest, Backwards_GivesTheNewestFirstAsManyAsFit)
{
    for (const RecordBytes& record : {m_first, m_second, m_third})
        m_log.Add(record);
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, g_dwBackwards, m_third.size() + m_second.size() + 4), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Holds({m_third, m_second}));
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Holds({m_first}));
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_HANDLE_EOF));
    EXPECT_TRUE(Close(log));
}

TEST_F(ReadableEventLogTest, Forwards_GivesTheOldestFirst)
{
    m_log.Add(m_first);
    m_log.Add(m_second);
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, g_dwForwards, 1000), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Holds({m_first, m_second}));
    EXPECT_TRUE(Close(log));
}

TEST_F(ReadableEventLogTest, TooSmallABuffer_TellsWhatTheNextRecordNeedsAndStays)
{
    m_log.Add(m_first);
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, g_dwBackwards, m_first.size() - 1), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(m_dwNeeded, m_first.size());
    EXPECT_EQ(m_dwRead, 0u);
    EXPECT_EQ(Read(log, g_dwBackwards, m_first.size()), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Holds({m_first}));
    EXPECT_TRUE(Close(log));
}

TEST_F(ReadableEventLogTest, WrongArguments_AreRefused)
{
    m_log.Add(m_first);
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, EVENTLOG_SEEK_READ | EVENTLOG_BACKWARDS_READ, 1000),
              static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(Read(log, g_dwBackwards, 0x80000), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(Close(log));
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(Close(log));
}

TEST_F(ReadableEventLogTest, EveryLog_HasItsOwnPlace)
{
    m_log.Add(m_first);
    const HANDLE one = OpenEventLogW(nullptr, L"A");
    const HANDLE two = OpenEventLogW(L"server", L"B");
    EXPECT_EQ(m_log.OpenCount(), 2u);
    EXPECT_THAT(m_log.OpenedNames(), ElementsAre(L"A", L"server\\B"));
    EXPECT_EQ(Read(one, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(Read(two, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Close(one));
    EXPECT_TRUE(Close(two));
}

TEST_F(ReadableEventLogTest, GivenAnswers_ComeFirstAndToTheLetter)
{
    m_log.Add(m_first);
    m_log.AnswerNext({.m_dwError = ERROR_EVENTLOG_FILE_CHANGED, .m_dwBytesNeeded = 77});
    m_log.AnswerNext({.m_lstBytes = RecordBytes(3, std::byte{5}), .m_dwBytesRead = 9});
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, g_dwBackwards, 8), static_cast<DWORD>(ERROR_EVENTLOG_FILE_CHANGED));
    EXPECT_EQ(m_dwNeeded, 77u);
    EXPECT_EQ(Read(log, g_dwBackwards, 2), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_THAT(m_lstBuffer, ElementsAre(std::byte{5}, std::byte{5}));
    EXPECT_EQ(m_dwRead, 9u);
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(Holds({m_first}));
    EXPECT_TRUE(Close(log));
    ASSERT_EQ(m_log.Reads().size(), 3u);
    EXPECT_EQ(m_log.Reads()[1].m_dwSize, 2u);
    EXPECT_EQ(m_log.Reads()[1].m_dwFlags, g_dwBackwards);
    EXPECT_EQ(m_log.Reads()[1].m_dwThreadId, GetCurrentThreadId());
}

TEST_F(ReadableEventLogTest, RefusedOpening_GivesNothingUntilItIsCalledOff)
{
    m_log.RefuseOpening(RPC_S_SERVER_UNAVAILABLE);
    EXPECT_EQ(OpenEventLogW(nullptr, L"A"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(RPC_S_SERVER_UNAVAILABLE));
    m_log.RefuseOpening(ERROR_SUCCESS);
    EXPECT_TRUE(Close(OpenEventLogW(nullptr, L"A")));
}

TEST_F(ReadableEventLogTest, WhoWatches_IsCalledBeforeEachRead)
{
    unsigned reads = 0;
    m_log.m_onRead = [&] { EXPECT_EQ(m_log.Reads().size(), reads++); };
    const HANDLE log = OpenEventLogW(nullptr, L"A");
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_HANDLE_EOF));
    EXPECT_EQ(Read(log, g_dwBackwards, 1000), static_cast<DWORD>(ERROR_HANDLE_EOF));
    EXPECT_EQ(reads, 2u);
    EXPECT_TRUE(Close(log));
    EXPECT_THAT(m_log.OpenedNames(), ElementsAre(L"A"));
}
} // namespace

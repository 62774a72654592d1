#include "tests/logfile/HeldDisk.h"
#include "tests/logfile/QueuedLogFileTest.h"
#include "tests/support/AllocationFault.h"

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;
using testing::IsEmpty;

using LogFileQueue = QueuedLogFileTest;

TEST_F(LogFileQueue, NoRecord_StartsNoThread)
{
    {
        const auto listener = Listener(true);
    }
    EXPECT_EQ(m_threads.Started(), 0u);
    EXPECT_EQ(BytesIn(m_folder.LogPath()), ByteOrderMark);
}

TEST_F(LogFileQueue, DirectListener_StartsNoThread)
{
    Listener(false).Write(MakeRecord(L"x"));
    EXPECT_EQ(m_threads.Started(), 0u);
}

TEST_F(LogFileQueue, OneRecord_IsWrittenByAThreadThatEnds)
{
    auto listener = Listener(true);
    listener.Write(MakeRecord(L"x"));
    EXPECT_EQ(m_threads.Started(), 1u);
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_THAT(Messages(), ElementsAre("x"));
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileQueue, Records_KeepTheirOrder)
{
    auto listener = Listener(true);
    WriteNumbered(listener, 1, 2000);
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 2000));
}

TEST_F(LogFileQueue, Record_CarriesTimeAndThreadOfItsCaller)
{
    const LogRecord record = MakeRecord(L"x");
    {
        auto listener = Listener(true);
        const HeldDisk disk;
        listener.Write(record);
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        Sleep(50);
    }
    EXPECT_EQ(BytesIn(m_folder.LogPath()), std::string(ByteOrderMark) + LineOf(record));
}

TEST_F(LogFileQueue, WhileOneThreadWrites_NoOtherIsStartedAndNobodyWaits)
{
    auto listener = Listener(true);
    {
        const HeldDisk disk;
        listener.Write(MakeRecord(L"message 1"));
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        WriteNumbered(listener, 2, 1000);
        EXPECT_EQ(m_threads.Started(), 1u);
        EXPECT_FALSE(OtherThreadCanWrite()) << "one thread holds the file for the whole batch";
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 1000));
    EXPECT_EQ(m_threads.Started(), 1u);
}

TEST_F(LogFileQueue, RecordAfterTheThreadHasEnded_StartsAnother)
{
    auto listener = Listener(true);
    for (unsigned i = 1; i <= 5; ++i)
    {
        WriteNumbered(listener, i, i);
        ASSERT_TRUE(m_threads.WaitForAll());
        EXPECT_EQ(m_threads.Started(), i);
        EXPECT_EQ(Messages(), Numbered("message", i));
    }
}

TEST_F(LogFileQueue, OneBatch_OpensTheFileOnce)
{
    auto listener = Listener(true);
    std::atomic<unsigned> opened = 0;
    const auto call = Replace<decltype(_wfopen_s)>("_wfopen_s",
                                                   [&](auto original, auto... arguments)
                                                   {
                                                       ++opened;
                                                       return original(arguments...);
                                                   });
    {
        const HeldDisk disk;
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        WriteNumbered(listener, 2, 500);
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(opened, 1u);
}

TEST_F(LogFileQueue, FileThatCannotBeOpened_KeepsTheRecordsForTheNextOne)
{
    auto listener = Listener(true);
    {
        const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 0, EACCES, ERROR_ACCESS_DENIED);
        for (unsigned i = 1; i <= 3; ++i)
        {
            WriteNumbered(listener, i, i);
            ASSERT_TRUE(m_threads.WaitForAll());
            EXPECT_EQ(m_threads.Started(), i);
            EXPECT_TRUE(OtherThreadCanWrite());
        }
    }
    EXPECT_THAT(Messages(), IsEmpty());
    WriteNumbered(listener, 4, 4);
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 4));
}

TEST_F(LogFileQueue, FileLockedBySomebodyElse_KeepsTheRecordsForTheNextOne)
{
    auto listener = Listener(true);
    {
        const UniqueHandle lock(
            CreateFileW(m_folder.LogPath().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_NE(lock.get(), INVALID_HANDLE_VALUE);
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(m_threads.WaitForAll());
    }
    WriteNumbered(listener, 2, 2);
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 2));
}

TEST_F(LogFileQueue, WaitThatFails_KeepsTheRecordsForTheNextOne)
{
    auto listener = Listener(true);
    {
        const auto call =
            Replace<decltype(WaitForSingleObject)>("WaitForSingleObject", [](auto original, HANDLE object, DWORD time)
                                                   { return time == INFINITE ? WAIT_FAILED : original(object, time); });
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(m_threads.WaitForAll());
    }
    WriteNumbered(listener, 2, 2);
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 2));
}

TEST_F(LogFileQueue, FileThatCannotBeOpenedAtTheStart_MakesNoQueue)
{
    m_product.Number(L"QueuedWrites", 1);
    auto first = true;
    const auto call =
        Replace<decltype(_wfopen_s)>("_wfopen_s", [&first](auto original, auto... arguments)
                                     { return std::exchange(first, false) ? EACCES : original(arguments...); });
    auto listener = Listener(true);
    WriteNumbered(listener, 1, 3);
    EXPECT_EQ(m_threads.Started(), 0u);
    EXPECT_EQ(Messages(), Numbered("message", 3));
}

TEST_F(LogFileQueue, ThreadThatCannotBeStarted_KeepsTheRecordsForTheNextOne)
{
    auto listener = Listener(true);
    m_threads.Refuse(2);
    WriteNumbered(listener, 1, 2);
    EXPECT_EQ(m_threads.Started(), 0u);
    EXPECT_THAT(Messages(), IsEmpty());
    WriteNumbered(listener, 3, 3);
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 3));
}

TEST_F(LogFileQueue, NoMemoryForACopy_LosesNoOtherRecord)
{
    auto listener = Listener(true);
    unsigned number = 0;
    Strings kept;
    for (bool bitten = true; bitten;)
    {
        ++number;
        const LogRecord record =
            MakeRecord(L"a message that is longer than a text holds in itself " + std::to_wstring(number));
        bool isTaken = true;
        {
            const AllocationFault fault(number);
            try
            {
                listener.Write(record);
            }
            catch (const std::bad_alloc&)
            {
                isTaken = false;
            }
            bitten = AllocationFault::HasBitten();
        }
        ASSERT_TRUE(m_threads.WaitForAll());
        if (isTaken)
            kept.push_back("a message that is longer than a text holds in itself " + std::to_string(number));
    }
    EXPECT_GE(number, 3u);
    EXPECT_LT(kept.size(), number) << "a record without memory for its copy is lost";
    EXPECT_EQ(Messages(), kept);
}

TEST_F(LogFileQueue, NoMemoryOnTheWritingThread_LosesThatRecordAlone)
{
    static constexpr std::size_t longText = 200;
    const std::wstring text(longText, L'x');
    const std::string start(longText, 'x');
    auto listener = Listener(true);
    Strings kept;
    // Each record takes two allocations of that length: the message and the line.
    for (const std::size_t nth : {3, 4})
    {
        const auto call = Replace<decltype(_wfopen_s)>("_wfopen_s",
                                                       [nth](auto original, auto... arguments)
                                                       {
                                                           thread_local std::unique_ptr<AllocationFault> fault;
                                                           fault = std::make_unique<AllocationFault>(nth, longText);
                                                           return original(arguments...);
                                                       });
        {
            const HeldDisk disk;
            listener.Write(MakeRecord(text + L"1"));
            ASSERT_TRUE(HeldDisk::WaitForAWriter());
            for (const wchar_t* end : {L"2", L"3", L"4"})
                listener.Write(MakeRecord(text + end));
        }
        ASSERT_TRUE(m_threads.WaitForAll());
        kept.insert(kept.end(), {start + "1", start + "3", start + "4"});
        EXPECT_EQ(Messages(), kept) << nth;
    }
}

TEST_F(LogFileQueue, FullDisk_LosesThoseRecordsAlone)
{
    auto listener = Listener(true);
    {
        const auto lines = Replace<WriteFunction>(
            "fwrite", [](auto original, auto text, auto size, auto count, auto* file)
            { return size == sizeof(wchar_t) ? decltype(count){0} : original(text, size, count, file); });
        const auto ends = FailCall<decltype(fputwc)>("fputwc", 0, WEOF, ERROR_DISK_FULL);
        WriteNumbered(listener, 1, 5);
        ASSERT_TRUE(m_threads.WaitForAll());
    }
    listener.Write(MakeRecord(L"kept"));
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileQueue, Rotation_HappensWithinABatch)
{
    m_product.Number(L"MaxLogSize", 1);
    auto listener = Listener(true);
    {
        const HeldDisk disk;
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        WriteNumbered(listener, 2, 60);
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    Strings messages;
    for (unsigned number = 9; number >= 1; --number)
    {
        if (Exists(m_folder.Older(number)))
            std::ranges::copy(MessagesIn(BytesIn(m_folder.Older(number))), std::back_inserter(messages));
    }
    EXPECT_TRUE(Exists(m_folder.Older(1)));
    std::ranges::copy(Messages(), std::back_inserter(messages));
    EXPECT_EQ(messages, Numbered("message", 60));
}
} // namespace

#include "tests/logfile/LinesByWriter.h"
#include "tests/logfile/LogFileTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace
{
using namespace Orvik::Shared;

constexpr unsigned g_threads = 4;

// Of all threads; everything where ORVIK_LONG=1 says so.
unsigned Records()
{
    wchar_t value[4] = {};
    const bool isLong = GetEnvironmentVariableW(L"ORVIK_LONG", value, ARRAYSIZE(value)) == 1 && value[0] == L'1';
    return isLong ? 2'000'000 : 20'000;
}

class LogFileSoak : public LogFileTest
{
protected:
    // ahead: records that may be queued, which bounds memory; no thread is further than that behind another.
    void WriteOnAllThreads(std::wstring_view filling, unsigned ahead)
    {
        std::atomic<unsigned> written = 0;
        const auto call = Replace<WriteFunction>("fwrite",
                                                 [&written](auto original, auto text, auto size, auto count, auto* file)
                                                 {
                                                     if (size == sizeof(wchar_t))
                                                         ++written;
                                                     return original(text, size, count, file);
                                                 });
        auto listener = Listener(true);
        std::vector<std::thread> threads;
        for (unsigned thread = 0; thread < g_threads; ++thread)
        {
            threads.emplace_back(
                [&, thread]
                {
                    for (unsigned i = 1; i <= Records() / g_threads; ++i)
                    {
                        listener.Write(
                            LogRecord(Level::Error, "N::C::F", (TextOf(thread, i) + std::wstring(filling)).c_str()));
                        while (i * g_threads > written + ahead)
                            Sleep(1);
                    }
                });
        }
        for (std::thread& thread : threads)
            thread.join();
        for (int i = 0; i < 600'000 && written < Records(); ++i)
            Sleep(1);
        listener.Finish();
        EXPECT_EQ(written, Records());
    }

    // Of a file that must be whole.
    static void AddLines(LinesByWriter& lines, const std::wstring& path, std::string_view filling)
    {
        std::ifstream file(std::filesystem::path(path), std::ios::binary);
        std::string line(ByteOrderMark.size(), '\0');
        file.read(line.data(), static_cast<std::streamsize>(line.size()));
        ASSERT_EQ(line, ByteOrderMark);
        while (std::getline(file, line))
        {
            ASSERT_TRUE(!file.eof() && line.ends_with(std::string(filling) + "\r")) << line;
            lines.Add(MessageOf(std::string_view(line).substr(0, line.size() - filling.size() - 1)));
        }
    }
};

TEST_F(LogFileSoak, LimitThatIsNotReached_EachRecordOnceAndInOrder)
{
    m_product.Number(L"MaxLogSize", 1024 * 1024);
    WriteOnAllThreads(L"", 50'000);
    LinesByWriter lines;
    AddLines(lines, m_folder.LogPath(), "");
    for (unsigned thread = 0; thread < g_threads; ++thread)
        EXPECT_EQ(lines.LastOf(thread), Records() / g_threads) << thread;
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre(testing::EndsWith(L".log")));
}

TEST_F(LogFileSoak, ManyRotations_KeepTenWholeFilesAtMost)
{
    // Long records, so that rotations are further apart than the clock of the file system is fine.
    const std::wstring filling(400, L'.');
    m_product.Number(L"MaxLogSize", 128);
    unsigned most = 0;
    std::atomic<bool> isOver = false;
    std::thread watch(
        [&]
        {
            for (; !isOver; Sleep(5))
                most = std::max(most, static_cast<unsigned>(m_folder.Names().size()));
        });
    // The last record of each thread is in the files that are kept.
    WriteOnAllThreads(filling, 2000);
    isOver = true;
    watch.join();
    EXPECT_LE(most, 11u) << "one file may be counted under two names while it moves";
    EXPECT_EQ(m_folder.Names().size(), 10u);

    LinesByWriter lines(LinesByWriter::MayMiss::Beginning);
    for (unsigned number = 9; number >= 1; --number)
        AddLines(lines, m_folder.Older(number), std::string(filling.begin(), filling.end()));
    AddLines(lines, m_folder.LogPath(), std::string(filling.begin(), filling.end()));
    for (unsigned thread = 0; thread < g_threads; ++thread)
        EXPECT_EQ(lines.LastOf(thread), Records() / g_threads) << thread;
}
} // namespace

#include "shared/LogFilePath.h"
#include "shared/ModuleName.h"
#include "tests/logfile/LinesByWriter.h"
#include "tests/logfile/LogFileTest.h"

namespace
{
using namespace Orvik::Shared;

constexpr unsigned g_records = 1500;

class LogFileProcess : public LogFileTest
{
protected:
    [[nodiscard]] UniqueHandle Start(const wchar_t* kind, unsigned writer, unsigned records = g_records) const
    {
        const std::wstring program = PathBesideProgram(L"log_writer.exe");
        std::wstring command = L"\"" + program + L"\" \"" + m_folder.ApplicationData() + L"\" " + kind + L" " +
                               m_strStart + L" " + std::to_wstring(writer) + L" " + std::to_wstring(records);
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION started{};
        EXPECT_TRUE(CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &started))
            << GetLastError();
        const UniqueHandle thread(started.hThread);
        return UniqueHandle(started.hProcess);
    }

    static void ExpectSuccess(const UniqueHandle& process)
    {
        DWORD code = 0;
        if (WaitForSingleObject(process.get(), 60'000) != WAIT_OBJECT_0)
            TerminateProcess(process.get(), WAIT_TIMEOUT);
        WaitForSingleObject(process.get(), 5000);
        GetExitCodeProcess(process.get(), &code);
        EXPECT_EQ(code, 0u);
    }

    // Two of them at the same time.
    void ExpectBothWhole(const wchar_t* first, const wchar_t* second)
    {
        const UniqueHandle one = Start(first, 1);
        const UniqueHandle two = Start(second, 2);
        SetEvent(m_hStart.get());
        ExpectSuccess(one);
        ExpectSuccess(two);
        LinesByWriter lines;
        for (const std::string& message : MessagesIn(BytesIn(m_strPath)))
            lines.Add(message);
        EXPECT_EQ(lines.LastOf(1), g_records);
        EXPECT_EQ(lines.LastOf(2), g_records);
    }

    const std::wstring m_strStart = L"log-writers-start-" + std::to_wstring(GetCurrentProcessId());
    const UniqueHandle m_hStart{CreateEventW(nullptr, TRUE, FALSE, m_strStart.c_str())};
    const std::wstring m_strPath = m_folder.Path(L"log_writer.log");
};

TEST_F(LogFileProcess, TwoDirect_NoLineIsLostOrInterleaved)
{
    ExpectBothWhole(L"direct", L"direct");
}

TEST_F(LogFileProcess, TwoQueued_NoLineIsLostOrInterleaved)
{
    ExpectBothWhole(L"queued", L"queued");
}

TEST_F(LogFileProcess, DirectAndQueued_NoLineIsLostOrInterleaved)
{
    ExpectBothWhole(L"direct", L"queued");
}

TEST_F(LogFileProcess, EndOfTheProcess_BringsWhatIsQueuedIntoTheFile)
{
    constexpr unsigned records = 100;
    ExpectSuccess(Start(L"logger", 1, records));
    LinesByWriter lines;
    for (const std::string& message : MessagesIn(BytesIn(m_strPath)))
        lines.Add(message);
    EXPECT_EQ(lines.LastOf(1), records);
}

TEST_F(LogFileProcess, ProcessThatDiesWithTheFile_LeavesItToTheOthers)
{
    // What keeps the mutex known while the one process is gone and the next not yet there.
    const UniqueHandle mutex(CreateMutexW(nullptr, FALSE, LogMutexName(m_strPath).c_str()));
    ExpectSuccess(Start(L"abandon", 0));
    ExpectBothWhole(L"direct", L"direct");
}
} // namespace

#include "shared/Log.h"
#include "shared/LogFile.h"
#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerFile.h"
#include "tests/logfile/LinesByWriter.h"
#include "tests/logfile/LogFolder.h"
#include "tests/logfile/LogLines.h"
#include "tests/logfile/ReplacedCall.h"
#include "tests/support/MachineRegistry.h"
#include "tests/support/PolicyKey.h"

#include <cwchar>

// A process that writes to a log file together with others: log_writer FOLDER direct|queued|logger|abandon EVENT WRITER
// COUNT
namespace
{
using namespace Orvik::Shared;

// Takes the file and dies with it.
[[noreturn]] void Abandon()
{
    CLogFile file{LoggingPolicy()};
    const bool isLocked = file.OpenAndLock();
    TerminateProcess(GetCurrentProcess(), isLocked ? 0 : 2);
    std::abort();
}

int Write(bool queued, const wchar_t* eventName, unsigned writer, unsigned count)
{
    const UniqueHandle start(OpenEventW(SYNCHRONIZE, FALSE, eventName));
    COrvikLogListenerFile listener(queued, Level::Error, LoggingPolicy());
    if (WaitForSingleObject(start.get(), 20'000) != WAIT_OBJECT_0)
        return 3;
    for (unsigned i = 1; i <= count; ++i)
        listener.Write(MakeRecord(TextOf(writer, i)));
    return 0;
}
// A disk that takes longer to write than this program to end. Never undone: the last record is written behind wmain.
void SlowDisk()
{
    static const auto& call = *new auto(Replace<WriteFunction>("fwrite",
                                                               [](auto original, auto... arguments)
                                                               {
                                                                   Sleep(2);
                                                                   return original(arguments...);
                                                               }));
    static_cast<void>(call);
}

// As a program does, by the logger of the process: queued, as policy says. Nobody but the end of the process finishes
// it.
int WriteByLogger(unsigned writer, unsigned count)
{
    const TestSupport::MachineRegistry registry;
    TestSupport::PolicyKey product(TestSupport::LoggingKey);
    product.Text(L"LoggingType", L"FILE").Number(L"QueuedWrites", 1);
    SlowDisk();
    for (unsigned i = 1; i <= count; ++i)
        Log(Level::Error, "N::C::F", L"%s", TextOf(writer, i).c_str());
    return 0;
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    if (argc != 6)
        return 1;
    LogFolder folder;
    folder.Tell(argv[1]);
    if (std::wcscmp(argv[2], L"abandon") == 0)
        Abandon();
    const unsigned writer = std::wcstoul(argv[4], nullptr, 10);
    const unsigned count = std::wcstoul(argv[5], nullptr, 10);
    if (std::wcscmp(argv[2], L"logger") == 0)
        return WriteByLogger(writer, count);
    return Write(std::wcscmp(argv[2], L"queued") == 0, argv[3], writer, count);
}

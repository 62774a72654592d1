#include "shared/LogFile.h"
#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerFile.h"
#include "tests/logfile/LinesByWriter.h"
#include "tests/logfile/LogFolder.h"
#include "tests/logfile/LogLines.h"

#include <cwchar>

// A process that writes to a log file together with others: log_writer FOLDER direct|queued|abandon EVENT WRITER COUNT
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
    return Write(std::wcscmp(argv[2], L"queued") == 0, argv[3], std::wcstoul(argv[4], nullptr, 10),
                 std::wcstoul(argv[5], nullptr, 10));
}

#include "shared/Log.h"
#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <cwchar>
#include <thread>

// A program that logs on many threads while it ends. Its exit code tells what was seen; the argument chooses the scene.
namespace
{
using namespace Orvik::Shared;

constexpr int g_success = 42;
constexpr int g_loggedAfterTheEnd = 3;
constexpr int g_loggedNothing = 4;

constinit std::atomic<unsigned> g_reports{0};
constinit std::atomic<unsigned> g_registrations{0};
constinit std::atomic<bool> g_logAtTheVeryEnd{false};

WINBOOL WINAPI CountedReportEvent(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, LPCWSTR*, LPVOID)
{
    ++g_reports;
    return TRUE;
}

HANDLE WINAPI CountedRegistration(LPCWSTR, LPCWSTR)
{
    ++g_registrations;
    return reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(1));
}

void RedirectEventLog()
{
    // Never undone: threads log until the process is gone.
    new Simulator::Redirection<decltype(ReportEventW)>("ReportEventW", &CountedReportEvent);
    new Simulator::Redirection<decltype(RegisterEventSourceW)>("RegisterEventSourceW", &CountedRegistration);
}

[[noreturn]] void End(int code)
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::abort();
}

void StartThreads()
{
    for (int i = 0; i < 4; ++i)
    {
        std::thread(
            [i]
            {
                for (unsigned n = 0;; ++n)
                {
                    Log(Level::Error, "N::C::Function", L"a record of thread %d, number %u", i, n);
                    // Around the test of the level as well: that one is not the last line of defence.
                    CLogger::Instance().Log(Level::Error, "N::C::Function", L"another record of thread %d", i);
                }
            })
            .detach();
    }
}

// Registered before the first record, so it runs after the logger has closed, while the threads go on.
void WatchForRecords()
{
    Sleep(100);
    const unsigned before = g_reports;
    if (before == 0)
        End(g_loggedNothing);
    Log(Level::Error, "F", L"from the ending thread");
    CLogger::Instance().Log(Level::Error, "F", L"from the ending thread");
    Sleep(100);
    if (g_reports != before)
        End(g_loggedAfterTheEnd);
}

// Made before every other object of the program, so it ends last.
struct Last
{
    ~Last()
    {
        if (!g_logAtTheVeryEnd)
            return;
        Log(Level::Error, "F", L"the first record of the process");
        if (g_registrations != 0 || g_reports != 0)
            End(g_loggedAfterTheEnd);
    }
};
__attribute__((init_priority(101))) const Last g_last;

int LogWhileEnding()
{
    RedirectEventLog();
    std::atexit(&WatchForRecords);
    StartThreads();
    Sleep(20);
    return g_success;
}

// With the real event log of the system, after a random moment.
int Race()
{
    StartThreads();
    LARGE_INTEGER start{};
    LARGE_INTEGER now{};
    QueryPerformanceCounter(&start);
    // Up to 5 milliseconds of a clock that counts tenths of a microsecond.
    const LONGLONG moment = start.QuadPart % 50'000;
    do
        QueryPerformanceCounter(&now);
    while (now.QuadPart - start.QuadPart < moment);
    return g_success;
}

int LogFirstAtTheVeryEnd()
{
    RedirectEventLog();
    g_logAtTheVeryEnd = true;
    return g_success;
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    const wchar_t* scene = argc > 1 ? argv[1] : L"";
    if (wcscmp(scene, L"while-ending") == 0)
        return LogWhileEnding();
    if (wcscmp(scene, L"race") == 0)
        return Race();
    if (wcscmp(scene, L"first-at-the-end") == 0)
        return LogFirstAtTheVeryEnd();
    return 1;
}

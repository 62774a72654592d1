#include "bench/log/Subjects.h"

#include "bench/support/AllocationCount.h"
#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerEvent.h"
#include "shared/RecordPrefix.h"
#include "shared/TraceScope.h"
#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <cwchar>
#include <memory>
#include <string>
#include <utility>

namespace
{
using namespace Orvik::Shared;

constexpr const char* g_name = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessSmartAdapterEvent";

std::atomic<int> g_minimum{Level::Error};

[[gnu::noinline, gnu::cold]] void Reached(std::size_t i)
{
    g_minimum = static_cast<int>(i);
}

inline void Baseline(std::size_t i)
{
    if (Level::Verbose >= g_minimum.load(std::memory_order_relaxed)) [[unlikely]]
        Reached(i);
}

inline void Record(std::size_t i)
{
    Log(Level::Verbose, g_name, L"nEventID: %d, callback: %s", static_cast<int>(i), L"text");
}

class IdleListener final : public COrvikLogListener
{
public:
    IdleListener() : COrvikLogListener(Level::TraceIn, LoggingPolicy(), LevelPolicy::Ignore) {}
    void Write(const LogData&) override {}
    [[nodiscard]] unsigned GetType() const override { return ListenerKind::Debug; }
};

template <class Listener, class... Args>
std::unique_ptr<CLogger> LoggerWith(Args&&... args)
{
    CLogger::Listeners listeners;
    listeners[0] = std::make_unique<Listener>(std::forward<Args>(args)...);
    return std::make_unique<CLogger>(std::move(listeners));
}

WINBOOL WINAPI IdleReportEvent(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, LPCWSTR*, LPVOID)
{
    return TRUE;
}

void FormatLikeTheLogger(wchar_t* buffer, const wchar_t* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    _vsnwprintf(buffer, 511, format, arguments);
    va_end(arguments);
}

// The compiler must believe that somebody looks at the result.
template <class T>
void Keep(const T& value)
{
    asm volatile("" : : "r"(&value) : "memory");
}
} // namespace

// Eight in a row: what is measured is the test, not the loop.
void LogSubjects::LoadCompareBranch(std::size_t times)
{
    for (std::size_t i = 0; i < times; i += 8)
    {
        Baseline(i);
        Baseline(i + 1);
        Baseline(i + 2);
        Baseline(i + 3);
        Baseline(i + 4);
        Baseline(i + 5);
        Baseline(i + 6);
        Baseline(i + 7);
    }
}

void LogSubjects::DisabledRecord(std::size_t times)
{
    for (std::size_t i = 0; i < times; i += 8)
    {
        Record(i);
        Record(i + 1);
        Record(i + 2);
        Record(i + 3);
        Record(i + 4);
        Record(i + 5);
        Record(i + 6);
        Record(i + 7);
    }
}

void LogSubjects::DisabledTraceScope(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
    {
        TraceScope trace(g_name);
        Keep(trace.Exit(S_OK));
    }
}

void LogSubjects::EnabledRecord(std::size_t times)
{
    static CLogger& logger = *LoggerWith<IdleListener>().release();
    for (std::size_t i = 0; i < times; ++i)
        logger.Log(Level::Verbose, g_name, L"nEventID: %d, callback: %s", static_cast<int>(i), L"text");
}

void LogSubjects::LocalTime(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
    {
        SYSTEMTIME time;
        GetLocalTime(&time);
        Keep(time);
    }
}

void LogSubjects::MessageFormat(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
    {
        wchar_t buffer[512];
        FormatLikeTheLogger(buffer, L"nEventID: %d, callback: %s", static_cast<int>(i), L"text");
        Keep(buffer);
    }
}

void LogSubjects::CopyOfNames(std::size_t times)
{
    const wchar_t* message = L"nEventID: 1234567, callback: text";
    for (std::size_t i = 0; i < times; ++i)
    {
        const std::string name(g_name);
        const std::wstring text(message);
        Keep(name);
        Keep(text);
    }
}

void LogSubjects::EventRecord(std::size_t times)
{
    static CLogger& logger = *LoggerWith<COrvikLogListenerEvent>(Level::TraceIn, LoggingPolicy()).release();
    const Simulator::Redirection<decltype(ReportEventW)> redirection("ReportEventW", &IdleReportEvent);
    for (std::size_t i = 0; i < times; ++i)
        logger.Log(Level::Verbose, g_name, L"nEventID: %d, callback: %s", static_cast<int>(i), L"text");
}

void LogSubjects::PrefixByHand(std::size_t times)
{
    SYSTEMTIME time{2024, 3, 2, 5, 14, 7, 9, 42};
    for (std::size_t i = 0; i < times; ++i)
    {
        wchar_t buffer[RecordPrefixCapacity];
        time.wMilliseconds = static_cast<WORD>(i % 1000);
        WriteRecordPrefix(buffer, time, 0x1A2C, L"Information");
        Keep(buffer);
    }
}

void LogSubjects::PrefixByPrintf(std::size_t times)
{
    SYSTEMTIME time{2024, 3, 2, 5, 14, 7, 9, 42};
    for (std::size_t i = 0; i < times; ++i)
    {
        wchar_t buffer[RecordPrefixCapacity];
        time.wMilliseconds = static_cast<WORD>(i % 1000);
        _snwprintf(buffer, RecordPrefixCapacity, L"%04d/%02d/%02d %02d:%02d:%02d.%03d|%08X|%-11s|", time.wYear,
                   time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds, 0x1A2C,
                   L"Information");
        Keep(buffer);
    }
}

std::size_t LogSubjects::AllocationsOfDisabledRecords(std::size_t times)
{
    const std::size_t before = Bench::AllocationCount();
    DisabledRecord(times);
    DisabledTraceScope(times);
    return Bench::AllocationCount() - before;
}

std::size_t LogSubjects::AllocationsOfEnabledRecords(std::size_t times)
{
    EnabledRecord(1);
    const std::size_t before = Bench::AllocationCount();
    EnabledRecord(times);
    return Bench::AllocationCount() - before;
}

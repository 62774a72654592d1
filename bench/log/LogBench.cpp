#include "bench/log/FileBench.h"
#include "bench/log/Subjects.h"
#include "bench/support/Bench.h"
#include "shared/Log.h"

#include <cstdio>

namespace
{
using namespace LogSubjects;
using Bench::NoLimit;

constexpr std::size_t g_counted = 100'000;

constexpr const char* g_branch = "inlined load, compare and branch";
constexpr const char* g_disabled = "record outside the range";
constexpr const char* g_trace = "trace scope outside the range (two records)";
constexpr const char* g_spdlog = "spdlog: disabled call of a logger object";
constexpr const char* g_spdlogGlobal = "spdlog: disabled global call";
constexpr const char* g_enabled = "record to one listener that does nothing";
constexpr const char* g_time = "GetLocalTime";
constexpr const char* g_format = "message format";
constexpr const char* g_copy = "copy of function name and message";
constexpr const char* g_event = "record to the event listener, event log idle";
constexpr const char* g_byHand = "prefix of the record line by hand";
constexpr const char* g_byPrintf = "prefix of the record line by _snwprintf";

void AddSubjects(Bench::Comparison& comparison)
{
    comparison.Add(g_branch, &LoadCompareBranch);
    comparison.Add(g_disabled, &DisabledRecord);
    comparison.Add(g_trace, &DisabledTraceScope);
    comparison.Add(g_spdlog, &DisabledSpdlogCall);
    comparison.Add(g_spdlogGlobal, &DisabledSpdlogGlobalCall);
    comparison.Add(g_enabled, &EnabledRecord);
    comparison.Add(g_time, &LocalTime);
    comparison.Add(g_format, &MessageFormat);
    comparison.Add(g_copy, &CopyOfNames);
    comparison.Add(g_event, &EventRecord);
    comparison.Add(g_byHand, &PrefixByHand);
    comparison.Add(g_byPrintf, &PrefixByPrintf);
}

void AddResults(Bench::Comparison& comparison)
{
    comparison.Ratio("record outside the range / load, compare and branch", g_disabled, {g_branch}, 2.0);
    comparison.Ratio("record outside the range / spdlog's disabled call", g_disabled, {g_spdlog}, 0.15);
    comparison.Ratio("record outside the range / spdlog's disabled global call", g_disabled, {g_spdlogGlobal}, NoLimit);
    comparison.Number("allocations of records outside the range",
                      static_cast<double>(AllocationsOfDisabledRecords(g_counted)), 0.0);
    comparison.Ratio("record to an idle listener / its unavoidable parts", g_enabled, {g_time, g_format, g_copy}, 1.3);
    comparison.Number("allocations of one record to an idle listener",
                      static_cast<double>(AllocationsOfEnabledRecords(g_counted)) / g_counted, NoLimit);
    comparison.Ratio("prefix by hand / by _snwprintf", g_byHand, {g_byPrintf}, NoLimit);
}
} // namespace

int main(int argc, char** argv)
{
    // The first record makes the logger of the process, which reads policy.
    Orvik::Shared::Log(Orvik::Shared::Level::Verbose, "main", L"first record");
    if (Orvik::Shared::IsLevelEnabled(Orvik::Shared::Level::Verbose))
    {
        std::fputs("Logging policy of this machine lets Verbose records through: remove it and run this again.\n",
                   stderr);
        return 1;
    }
    Bench::Comparison comparison("Log");
    AddSubjects(comparison);
    AddResults(comparison);
    const int result = comparison.Run(argc > 1 ? argv[1] : "build/bench/log.json");
    const int fileResult = FileBench::Run(argc > 2 ? argv[2] : "build/bench/log-file.json");
    return result != 0 ? result : fileResult;
}

#include "bench/log/FileBench.h"

#include "bench/log/FileLoggers.h"
#include "bench/log/FileSubjects.h"
#include "bench/log/QueueSubjects.h"
#include "bench/support/Bench.h"
#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerFile.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace
{
using Bench::NoLimit;

constexpr std::size_t g_batch = 50'000;
constexpr std::size_t g_backlog = 100'000;
constexpr int g_batches = 7;

constexpr const char* g_direct = "record written at once";
constexpr const char* g_bare = "the same cycle through the C runtime";
constexpr const char* g_floor = "open, write and close by Windows alone";
constexpr const char* g_queued = "queued record, on the calling thread";
constexpr const char* g_append = "from the finished record to the queue";
constexpr const char* g_copy = "critical section and copy of the record";
constexpr const char* g_spdlog = "spdlog: asynchronous record, on the calling thread";
constexpr const char* g_first = "record that starts a writer, until it is written";
constexpr const char* g_rotation = "rotation of nine older files";
constexpr const char* g_bareRotation = "its file operations";

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// How long ours takes as a part of how long spdlog does, batch by batch.
double PartOfSpdlogsTime()
{
    std::vector<double> parts;
    for (int i = 0; i < g_batches; ++i)
    {
        const double ours = QueueSubjects::SecondsOfBatch(g_batch);
        parts.push_back(ours / QueueSubjects::SecondsOfSpdlogBatch(g_batch));
    }
    return Median(std::move(parts));
}

void AddSubjects(Bench::Comparison& comparison)
{
    const Bench::Surroundings held{&QueueSubjects::HoldFile, &QueueSubjects::LetWrite};
    const Bench::Surroundings nine{&FileSubjects::MakeOlderFiles};
    comparison.Add(g_direct, &FileSubjects::DirectRecord);
    comparison.Add(g_bare, &FileSubjects::BareCycle);
    comparison.Add(g_floor, &FileSubjects::WindowsCycle);
    comparison.Add(g_queued, &QueueSubjects::QueuedRecord, held);
    comparison.Add(g_append, &QueueSubjects::QueuedAppend, held);
    comparison.Add(g_copy, &QueueSubjects::LockAndCopy, {nullptr, &QueueSubjects::DropCopies});
    comparison.Add(g_spdlog, &QueueSubjects::SpdlogRecord, {nullptr, &QueueSubjects::SpdlogDrain});
    comparison.Add(g_first, &QueueSubjects::FirstRecord);
    comparison.Add(g_rotation, &FileSubjects::Rotation, nine);
    comparison.Add(g_bareRotation, &FileSubjects::BareRotation, nine);
}
} // namespace

Orvik::Shared::CLogger& FileSubjects::LoggerToFile(bool queued)
{
    using namespace Orvik::Shared;
    CLogger::Listeners listeners;
    listeners[0] = std::make_unique<COrvikLogListenerFile>(queued, Level::TraceIn, LoggingPolicy());
    return *std::make_unique<CLogger>(std::move(listeners)).release();
}

int FileBench::Run(const char* jsonFile)
{
    Bench::Comparison comparison("Log file");
    AddSubjects(comparison);
    comparison.Ratio("record written at once / the same cycle through the C runtime", g_direct, {g_bare}, 1.15);
    comparison.Ratio("record written at once / Windows alone", g_direct, {g_floor}, NoLimit);
    comparison.Ratio("finished record to the queue / critical section and copy", g_append, {g_copy}, 1.5);
    comparison.Ratio("finished record to the queue / spdlog's asynchronous record", g_append, {g_spdlog}, 0.3);
    comparison.Ratio("queued record, from its call on / spdlog's asynchronous record", g_queued, {g_spdlog}, NoLimit);
    comparison.Ratio("rotation / its file operations", g_rotation, {g_bareRotation}, 1.3);
    comparison.Number("50,000 records to disk, time / spdlog's", PartOfSpdlogsTime(), NoLimit);
    comparison.Number("backlog of 100,000: memory / fields and texts", QueueSubjects::MemoryOfBacklog(g_backlog), 1.5);
    return comparison.Run(jsonFile);
}

#include "bench/log/QueueSubjects.h"

#include "bench/log/FileLoggers.h"
#include "shared/LogFilePath.h"

#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <chrono>
#include <filesystem>
#include <memory>

namespace
{
constexpr std::size_t g_queueLength = 65'536;

struct AsyncLogger
{
    std::shared_ptr<spdlog::details::thread_pool> m_pPool;
    std::shared_ptr<spdlog::async_logger> m_pLogger;
};

AsyncLogger MakeLogger()
{
    const std::filesystem::path path(Orvik::Shared::LogFilePath() + L".spdlog");
    auto pool = std::make_shared<spdlog::details::thread_pool>(g_queueLength, 1);
    auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(path.string(), true);
    sink->set_pattern("%Y/%m/%d %H:%M:%S.%e|%t|%l|%v");
    return {pool, std::make_shared<spdlog::async_logger>("async", sink, pool, spdlog::async_overflow_policy::block)};
}

AsyncLogger& Logger()
{
    static auto& logger = *new AsyncLogger(MakeLogger());
    return logger;
}
} // namespace

void QueueSubjects::SpdlogRecord(std::size_t times)
{
    spdlog::async_logger& logger = *Logger().m_pLogger;
    for (std::size_t i = 0; i < times; ++i)
        logger.info("{}|nEventID: {}, callback: {}", FileSubjects::RecordName, i, "text");
}

void QueueSubjects::SpdlogDrain()
{
    while (Logger().m_pPool->queue_size() != 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

double QueueSubjects::SecondsOfSpdlogBatch(std::size_t records)
{
    AsyncLogger logger = MakeLogger();
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < records; ++i)
        logger.m_pLogger->info("{}|nEventID: {}, callback: {}", FileSubjects::RecordName, i, "text");
    logger.m_pLogger->flush();
    logger.m_pLogger.reset();
    // Its thread ends when all is written.
    logger.m_pPool.reset();
    const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - start;
    return duration.count();
}

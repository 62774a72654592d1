#include "bench/log/Subjects.h"

#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <memory>

namespace
{
spdlog::logger& QuietLogger()
{
    static const std::shared_ptr<spdlog::logger> logger = []
    {
        auto made = std::make_shared<spdlog::logger>("quiet", std::make_shared<spdlog::sinks::null_sink_mt>());
        made->set_level(spdlog::level::err);
        spdlog::set_default_logger(made);
        return made;
    }();
    return *logger;
}
} // namespace

void LogSubjects::DisabledSpdlogCall(std::size_t times)
{
    spdlog::logger& logger = QuietLogger();
    for (std::size_t i = 0; i < times; i += 8)
    {
        logger.debug("event {} of {}", i, "function");
        logger.debug("event {} of {}", i + 1, "function");
        logger.debug("event {} of {}", i + 2, "function");
        logger.debug("event {} of {}", i + 3, "function");
        logger.debug("event {} of {}", i + 4, "function");
        logger.debug("event {} of {}", i + 5, "function");
        logger.debug("event {} of {}", i + 6, "function");
        logger.debug("event {} of {}", i + 7, "function");
    }
}

void LogSubjects::DisabledSpdlogGlobalCall(std::size_t times)
{
    QuietLogger();
    for (std::size_t i = 0; i < times; i += 8)
    {
        spdlog::debug("event {} of {}", i, "function");
        spdlog::debug("event {} of {}", i + 1, "function");
        spdlog::debug("event {} of {}", i + 2, "function");
        spdlog::debug("event {} of {}", i + 3, "function");
        spdlog::debug("event {} of {}", i + 4, "function");
        spdlog::debug("event {} of {}", i + 5, "function");
        spdlog::debug("event {} of {}", i + 6, "function");
        spdlog::debug("event {} of {}", i + 7, "function");
    }
}

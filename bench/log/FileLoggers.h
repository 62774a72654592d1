#pragma once

#include "shared/Logger.h"

#include <cstddef>

namespace FileSubjects
{
inline constexpr const char* RecordName = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessSmartAdapterEvent";

// A logger, never destroyed, whose one listener writes every level to this program's log file.
[[nodiscard]] Orvik::Shared::CLogger& LoggerToFile(bool queued);

// The record that all subjects write.
inline void LogOne(Orvik::Shared::CLogger& logger, std::size_t i)
{
    logger.Log(Orvik::Shared::Level::Verbose, RecordName, L"nEventID: %d, callback: %s", static_cast<int>(i), L"text");
}
} // namespace FileSubjects

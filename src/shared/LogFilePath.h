#pragma once

#include <string>

namespace Orvik::Shared
{
// Full path of this program's log file, in the folder "orvikLog" under the user's roaming application data; makes the
// folder where it is missing. Empty when that fails or when the path has more than 259 characters.
[[nodiscard]] std::wstring LogFilePath();

// Name of the machine-wide mutex that everybody holds who writes the file of that path:
// "Global\.Users.ann.AppData.Roaming.orvikLog.OrvikNotifications.log".
[[nodiscard]] std::wstring LogMutexName(const std::wstring& logPath);
} // namespace Orvik::Shared

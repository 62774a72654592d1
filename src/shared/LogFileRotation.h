#pragma once

#include <string>

namespace Orvik::Shared
{
// Makes room for the log file among the older ones and returns the path that is free for it then, "name_0001.log";
// empty when the path cannot be made full. The older ones, whatever stands behind their "name_", move up by age: the
// oldest gets the highest number. Of exactly nine the oldest is deleted; of ten and more none is, deliberately, since
// those were not all made here. Of two with the same time only one counts. What cannot be renamed stays where it is, or
// under the temporary name that it had between two numbers. Raises std::bad_alloc before anything is changed.
[[nodiscard]] std::wstring MoveOlderLogFilesUp(const std::wstring& logPath);
} // namespace Orvik::Shared

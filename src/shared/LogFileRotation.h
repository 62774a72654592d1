#pragma once

#include <string>

namespace Orvik::Shared
{
// Makes room for the log file among the older ones, then renames it to "name_0001.log". The older ones, whatever stands
// behind their "name_", move up by age: the oldest gets the highest number. Of exactly nine the oldest is deleted; of
// ten and more none is, deliberately, since those were not all made here. Of two with the same time only one counts.
// Nobody may have the log file open. What cannot be renamed stays where it is. Raises std::bad_alloc before anything is
// renamed.
void RotateLogFiles(const std::wstring& logPath);
} // namespace Orvik::Shared

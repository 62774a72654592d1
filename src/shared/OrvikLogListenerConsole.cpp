#include "shared/OrvikLogListenerConsole.h"

#include "shared/LogData.h"

#include <cstdio>

namespace Orvik::Shared
{
void COrvikLogListenerConsole::Write(const LogData& data)
{
    // The runtime library's own routine: it holds the stream for the whole line, mingw's replacement does not.
    __ms_fwprintf(stdout, L"%S : %s\r\n", data.FunctionName().c_str(), data.Message().c_str());
}
} // namespace Orvik::Shared

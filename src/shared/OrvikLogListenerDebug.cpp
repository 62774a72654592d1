#include "shared/OrvikLogListenerDebug.h"

#include "shared/LogData.h"

namespace Orvik::Shared
{
void COrvikLogListenerDebug::Write(const LogData& data)
{
    OutputDebugStringW(data.ShortLine().c_str());
}
} // namespace Orvik::Shared

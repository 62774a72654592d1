#pragma once

#include "shared/Logger.h"
#include "shared/LogLevel.h"
#include "shared/WideFormat.h"

#include <type_traits>

namespace Orvik::Shared
{
// Writes one record through the process-wide logger, under the caller's qualified function name (ORVIK_FUNCTION).
// A level that no listener takes costs one load, test and branch here. Any thread; never fails, keeps GetLastError.
template <class... Args>
inline void Log(int level, const char* functionName, WideFormat<std::type_identity_t<Args>...> format, Args... args)
{
    if (IsLevelEnabled(level)) [[unlikely]]
        CLogger::Instance().Log(level, functionName, format.Text(), args...);
}
} // namespace Orvik::Shared

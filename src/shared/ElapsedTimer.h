#pragma once

#include "shared/Logger.h"

namespace Orvik::Shared
{
// Times the scope it lives in: at its end it logs the time at level Diag and adds it to the logger's statistics. Made
// only when the logger's IsDiagTimingOn says so. Time during which the machine sleeps does not count.
class CElapsedTimer
{
public:
    // functionName: kept as a pointer, so it outlives the timer (ORVIK_FUNCTION does); null counts as empty.
    CElapsedTimer(CLogger& logger, const char* functionName) noexcept;
    CElapsedTimer(const CElapsedTimer&) = delete;
    CElapsedTimer& operator=(const CElapsedTimer&) = delete;
    ~CElapsedTimer();

private:
    void LogElapsed() const noexcept;

    CLogger& m_logger;
    const char* m_pFunctionName;
    ULONGLONG m_nStart = 0; // units of 100 nanoseconds
    double m_elapsedMilliseconds = 0;
};
} // namespace Orvik::Shared

#include "shared/ElapsedTimer.h"

#include <windows.h>

#include <exception>

namespace Orvik::Shared
{
namespace
{
constexpr double g_ticksPerMillisecond = 10'000.0;
// From here on the time is shown in seconds.
constexpr double g_longMilliseconds = 1'000'000.0;
} // namespace

CElapsedTimer::CElapsedTimer(CLogger& logger, const char* functionName) noexcept
    : m_logger(logger), m_pFunctionName(functionName != nullptr ? functionName : "")
{
    QueryUnbiasedInterruptTime(&m_nStart);
}

CElapsedTimer::~CElapsedTimer()
{
    ULONGLONG end = 0;
    QueryUnbiasedInterruptTime(&end);
    m_elapsedMilliseconds = static_cast<double>(end - m_nStart) / g_ticksPerMillisecond;
    LogElapsed();
    try
    {
        m_logger.Statistics().Add(m_pFunctionName, m_elapsedMilliseconds);
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch)
    {
        // Out of memory: this call is missing from the statistics.
    }
}

void CElapsedTimer::LogElapsed() const noexcept
{
    if (m_elapsedMilliseconds < g_longMilliseconds)
        m_logger.Log(Level::Diag, m_pFunctionName, L"Elapsed time = %7.1Lf ms.", m_elapsedMilliseconds);
    else
        m_logger.Log(Level::Diag, m_pFunctionName, L"Elapsed time = %7.1Lf s.", m_elapsedMilliseconds / 1000);
}
} // namespace Orvik::Shared

#pragma once

#include "shared/Logger.h"

#include <cstdint>

namespace Tests
{
// While it lives the program logs nothing below a level: the records of a large audit log would be many times as large.
class QuietLog
{
public:
    explicit QuietLog(int leastLevel = 31)
    {
        // Its making takes the levels from policy.
        Orvik::Shared::CLogger::Instance();
        m_nLevels = Orvik::Shared::g_enabledLevels;
        Orvik::Shared::g_enabledLevels = m_nLevels & ~0u << leastLevel & ~(1u << 31);
    }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;
    ~QuietLog() { Orvik::Shared::g_enabledLevels = m_nLevels; }

private:
    std::uint32_t m_nLevels;
};
} // namespace Tests

#include "shared/LoggingPolicy.h"
#include "shared/LogLevel.h"
#include "shared/OrvikLogListenerFile.h"

#include "tests/policies/LogPolicyTest.h"
#include "tests/support/PolicyKey.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace
{
using namespace Orvik::Shared;

constexpr char g_line[] = "\xEF\xBB\xBF"
                          "2024/03/05 14:07:09.042|00001A2C|Error      |N::C::F|old\r\n";
constexpr std::uintmax_t g_unit = 1024;

const NumberLimits& Limits()
{
    for (const NumberLimits& row : g_numbers)
    {
        if (std::wstring_view(row.m_pValue) == L"MaxLogSize")
            return row;
    }
    throw std::runtime_error("the table has no MaxLogSize");
}

class LogSizePolicy : public LogPolicyTest
{
protected:
    // Whether the first record of a run moves a log of that many bytes aside.
    [[nodiscard]] bool IsMoved(std::optional<DWORD> policy, std::uintmax_t bytes)
    {
        DeleteFileW(m_folder.LogPath().c_str());
        DeleteFileW(m_folder.Older(1).c_str());
        if (policy)
            m_key.Number(Limits().m_pValue, *policy);
        COrvikLogListenerFile listener(false, Level::Error, LoggingPolicy());
        WriteBytes(m_folder.LogPath(), g_line);
        std::filesystem::resize_file(m_folder.LogPath(), bytes);
        listener.Write(COrvikLogListener::LogData(Level::Error, "F", L"x"));
        return Exists(m_folder.Older(1));
    }
};

TEST_F(LogSizePolicy, NoData_IsTheDefault)
{
    EXPECT_FALSE(IsMoved({}, Limits().m_dwDefault * g_unit));
    EXPECT_TRUE(IsMoved({}, Limits().m_dwDefault * g_unit + 1));
}

TEST_F(LogSizePolicy, LeastData_IsASizeAndOneBelowIsTheDefault)
{
    EXPECT_FALSE(IsMoved(Limits().m_dwMinimum, Limits().m_dwMinimum * g_unit));
    EXPECT_TRUE(IsMoved(Limits().m_dwMinimum, Limits().m_dwMinimum * g_unit + 1));
    EXPECT_FALSE(IsMoved(Limits().m_dwMinimum - 1, Limits().m_dwDefault * g_unit));
    EXPECT_TRUE(IsMoved(Limits().m_dwMinimum - 1, Limits().m_dwDefault * g_unit + 1));
}

// Sizes are counted in 32 bits of bytes: one more unit is none at all.
TEST_F(LogSizePolicy, MostData_IsASizeAndOneAboveMovesEveryFile)
{
    EXPECT_FALSE(IsMoved(Limits().m_dwMaximum, 1 * g_unit * g_unit));
    EXPECT_TRUE(IsMoved(Limits().m_dwMaximum + 1, sizeof(g_line)));
}
} // namespace

#pragma once

#include "PolicyTable.h"
#include "tests/logfile/LogFolder.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>

#include <span>
#include <string_view>
#include <vector>

// A test of the log's policies: nothing is set at first, and the folder of log files is empty.
class LogPolicyTest : public testing::Test
{
protected:
    // The key of the table; all log policies have the same.
    [[nodiscard]] static const wchar_t* Key()
    {
        for (const PolicyRow& row : g_policies)
        {
            if (std::wstring_view(row.m_pValue) == L"LoggingType")
                return row.m_pKey;
        }
        return L"";
    }

    TestSupport::PolicyKey m_key{Key()};
    LogFolder m_folder;
};

[[nodiscard]] inline std::vector<const TextData*> RowsOf(std::span<const TextData> table, std::wstring_view value)
{
    std::vector<const TextData*> rows;
    for (const TextData& row : table)
    {
        if (value == row.m_pValue)
            rows.push_back(&row);
    }
    return rows;
}

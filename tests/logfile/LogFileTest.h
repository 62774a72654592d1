#pragma once

#include "shared/LogFile.h"
#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerFile.h"
#include "tests/logfile/LogFolder.h"
#include "tests/logfile/LogLines.h"
#include "tests/logfile/ReplacedCall.h"
#include "tests/support/PolicyKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

// A test with an empty folder for log files and an empty logging policy of the product.
class LogFileTest : public testing::Test
{
protected:
    using CLogFile = Orvik::Shared::CLogFile;
    using COrvikLogListenerFile = Orvik::Shared::COrvikLogListenerFile;
    using LoggingPolicy = Orvik::Shared::LoggingPolicy;
    using Strings = std::vector<std::string>;
    using WideStrings = std::vector<std::wstring>;

    static COrvikLogListenerFile Listener(bool queued = false)
    {
        return {queued, Orvik::Shared::Level::Error, LoggingPolicy()};
    }

    // Of the log file, which must be whole.
    [[nodiscard]] Strings Messages() const { return MessagesIn(BytesIn(m_folder.LogPath())); }

    // Whether another thread gets the file; it gives it back.
    [[nodiscard]] static bool OtherThreadCanWrite()
    {
        bool done = false;
        std::thread([&done] { done = IsMutexFree(); }).join();
        return done;
    }

    TestSupport::PolicyKey m_product{TestSupport::LoggingKey};
    LogFolder m_folder;

private:
    [[nodiscard]] static bool IsMutexFree();
};

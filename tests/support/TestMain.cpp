#include "shared/ModuleName.h"
#include "tests/support/EventLogCapture.h"
#include "tests/support/MachineRegistry.h"
#include "tests/support/PolicyKey.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

namespace
{
using TestSupport::EventLogCapture;
using TestSupport::PolicyKey;

// Each test begins with an empty event log and with the policy that lets every record reach it.
class CleanStart : public testing::EmptyTestEventListener
{
public:
    void OnTestStart(const testing::TestInfo&) override
    {
        EventLogCapture::Clear();
        m_pPolicy.reset();
        m_pPolicy = std::make_unique<PolicyKey>(TestSupport::LoggingKey);
        m_pPolicy->Text(L"LoggingType", L"EVENT").Text(L"MinLogLevel", L"TraceIn").Text(L"MaxLogLevel", L"Diag");
    }

private:
    std::unique_ptr<PolicyKey> m_pPolicy;
};
} // namespace

int wmain(int argc, wchar_t** argv)
{
    // A crash ends the program instead of waiting for a debugger.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    if (Orvik::Shared::ProductName().empty())
    {
        std::fputs("This test program has no version resource: link orvik_resources.\n", stderr);
        return 1;
    }
    const TestSupport::MachineRegistry registry;
    EventLogCapture::Install();
    auto* cleanStart = new CleanStart;
    testing::UnitTest::GetInstance()->listeners().Append(cleanStart);
    const int result = RUN_ALL_TESTS();
    delete testing::UnitTest::GetInstance()->listeners().Release(cleanStart);
    return result;
}

#include "shared/ElapsedTimer.h"
#include "shared/Log.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/shared/ListenerDouble.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;

// Longer than what a string object holds in itself, so that every copy allocates.
constexpr const char* g_longName = "A::Function::With::A::Long::Name";
constexpr const wchar_t* g_longText = L"a message that is longer than what a string object holds in itself";

WINBOOL WINAPI SilentReportEvent(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, LPCWSTR*, LPVOID)
{
    return TRUE;
}

// Makes each allocation of the call fail in turn; returns how many there were.
template <class Call>
std::size_t FailEachAllocation(Call call)
{
    for (std::size_t nth = 1;; ++nth)
    {
        SetLastError(ERROR_FILE_NOT_FOUND);
        bool bitten = false;
        {
            const AllocationFault fault(nth);
            call();
            bitten = AllocationFault::HasBitten();
        }
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
        if (!bitten)
            return nth - 1;
    }
}

TEST(OutOfMemory, EachAllocationOfARecord_LosesTheRecordOnly)
{
    const Simulator::Redirection<decltype(ReportEventW)> redirection("ReportEventW", &SilentReportEvent);
    CLogger::Instance();
    EXPECT_GE(FailEachAllocation([] { Log(Level::Error, g_longName, L"%s", g_longText); }), 3u);
}

TEST(OutOfMemory, RecordAfterALostOne_IsWritten)
{
    CLogger::Instance();
    {
        const AllocationFault fault(1);
        Log(Level::Error, g_longName, L"%s", L"lost");
    }
    Log(Level::Error, g_longName, L"%s", L"kept");
    EXPECT_TRUE(NotLogged(Level::Error, g_longName, L"lost"));
    EXPECT_TRUE(Logged(Level::Error, g_longName, L"kept"));
}

TEST(OutOfMemory, TimerThatCannotCount_Ends)
{
    CLogger logger{CLogger::Listeners{}};
    EXPECT_GE(FailEachAllocation([&logger] { const CElapsedTimer timer(logger, g_longName); }), 1u);
}

TEST(OutOfMemory, DisabledRecord_AllocatesNothing)
{
    CLogger::Listeners listeners;
    listeners[0] = ListenerDouble::Make(L"Error", L"Error", [](const auto&) {});
    CLogger logger(std::move(listeners));
    const std::size_t before = AllocationFault::Count();
    for (int i = 0; i < 1000; ++i)
        logger.Log(Level::Verbose, g_longName, L"%s", g_longText);
    EXPECT_EQ(AllocationFault::Count(), before);
}
} // namespace

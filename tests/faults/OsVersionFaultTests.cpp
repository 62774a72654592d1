#include "app/system/OsVersion.h"
#include "simulator/doubles/ComRedirections.h"
#include "simulator/model/Facts.h"
#include "tests/faults/FaultSweep.h"
#include "tests/support/LogCapture.h"

#include <objbase.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

using testing::Contains;
using testing::ElementsAre;

namespace
{
bool IsOneOf(const std::string& name, std::initializer_list<const char*> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The thread's apartment and the process's security may be someone else's: a refusal is no failure of the query.
bool IsAbsorbed(const FaultStep& step)
{
    return step.m_repeat == Simulator::Repeat::Once &&
           IsOneOf(step.m_strCall, {"CoInitializeEx", "CoInitializeSecurity", "CoUninitialize"});
}
} // namespace

TEST(OsVersionFault, Windows10_EachCallFails_IsFalseWithItsLine)
{
    const Simulator::ComRedirections redirections(Simulator::Activation::InProcess);
    // Keeps the apartment there when the query's own membership is refused.
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    Simulator::Facts::Instance().Clear();
    // A number whose text reads as a version: the conversion is part of the sweep.
    Simulator::Facts::Instance().Set("/wmi/os/version", {{"r8", 10.5}});

    BOOL result = FALSE;
    FaultSweep sweep;
    sweep.m_operation = [&] { result = Win10AndHiger(); };
    sweep.m_checkSuccess = [&]
    {
        EXPECT_EQ(result, TRUE);
        EXPECT_THAT(TestSupport::OperationalLines(), testing::IsEmpty());
    };
    sweep.m_checkFailure = [&](const FaultStep& step)
    {
        const bool endsBehind = step.m_strCall == "CoUninitialize";
        EXPECT_EQ(result, IsAbsorbed(step) || endsBehind ? TRUE : FALSE);
        if (IsAbsorbed(step) || endsBehind)
        {
            EXPECT_THAT(TestSupport::OperationalLines(), testing::IsEmpty());
            return;
        }
        const bool isRead = IsOneOf(step.m_strCall, {"IWbemClassObject::Get", "VariantChangeType"});
        EXPECT_THAT(TestSupport::OperationalLines(),
                    ElementsAre(isRead ? L"Information|Win10AndHiger|GetPropertyValue for Version property failed."
                                       : L"Information|Win10AndHiger|ExecuteQuery failed."));
        EXPECT_EQ(TestSupport::LogLines().back(), L"TraceOut|Win10AndHiger|0");
    };
    const std::vector<std::string> reached = sweep.Run();
    for (const char* call :
         {"CoInitializeEx", "CoInitializeSecurity", "CoCreateInstance", "IWbemLocator::ConnectServer",
          "CoSetProxyBlanket", "SysAllocString", "IWbemServices::ExecQuery", "IEnumWbemClassObject::Next",
          "IWbemClassObject::Get", "VariantChangeType"})
        EXPECT_THAT(reached, Contains(call));
    CoUninitialize();
}

#include "app/system/OsVersion.h"

#include "shared/Log.h"
#include "simulator/doubles/ComRedirections.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"

#include <oleauto.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Journal;
using testing::ElementsAre;

namespace
{
class OsVersionTest : public testing::Test
{
protected:
    OsVersionTest()
    {
        CallPlan::Instance().Reset();
        Facts::Instance().Clear();
        Journal::Instance().Clear();
        TestSupport::ClearLog();
    }
    ~OsVersionTest() override
    {
        EXPECT_EQ(Simulator::LiveObjects::Count(), 0);
        CallPlan::Instance().Reset();
        Facts::Instance().Clear();
    }

    static BOOL AskWith(const nlohmann::json& version)
    {
        Facts::Instance().Set("/wmi/os/version", version);
        TestSupport::ClearLog();
        return Win10AndHiger();
    }

    Simulator::ComRedirections m_redirections{Simulator::Activation::InProcess};
};

nlohmann::json DetailsOf(const std::string& call)
{
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strSubject == call)
            return entry.m_details;
    }
    return nullptr;
}

struct Verification
{
    OSVERSIONINFOEXW m_wanted{};
    DWORD m_dwTypes = 0;
    DWORDLONG m_nCondition = 0;
    BOOL m_bAnswer = TRUE;
};
Verification g_verification;

BOOL WINAPI NotedVerify(LPOSVERSIONINFOEXW wanted, DWORD types, DWORDLONG condition)
{
    g_verification.m_wanted = *wanted;
    g_verification.m_dwTypes = types;
    g_verification.m_nCondition = condition;
    return g_verification.m_bAnswer;
}

BSTR WINAPI NoBstr(const OLECHAR*)
{
    return nullptr;
}

// Whether WMI is Windows' own here, and not that of the simulated machine, which only answers inside the agent.
bool IsWmiReal()
{
    wchar_t server[MAX_PATH] = L"";
    DWORD size = sizeof(server);
    RegGetValueW(HKEY_CLASSES_ROOT, L"CLSID\\{4590F811-1D3A-11D0-891F-00AA004B2E24}\\InprocServer32", nullptr,
                 RRF_RT_REG_SZ, nullptr, server, &size);
    return std::wstring_view(server).find(L"orvik_machine") == std::wstring_view::npos;
}

class RealWmi : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!IsWmiReal())
            GTEST_SKIP() << "This Windows was made a simulated machine before";
    }
};

using RealSystem = RealWmi;
} // namespace

TEST_F(OsVersionTest, Windows10_Always_AsksWmiForwardOnlyAndAtOnce)
{
    EXPECT_EQ(AskWith("10.0.19045"), TRUE);
    EXPECT_EQ(DetailsOf("IWbemLocator::ConnectServer")["namespace"], "\\\\.\\root\\cimv2");
    EXPECT_EQ(DetailsOf("IWbemServices::ExecQuery")["query"], "select Version from Win32_OperatingSystem");
    EXPECT_EQ(DetailsOf("IWbemServices::ExecQuery")["flags"], 0x30);
    EXPECT_EQ(DetailsOf("IWbemClassObject::Get")["property"], "Version");
}

TEST_F(OsVersionTest, Windows10_VersionOfWindows10_IsTrueAndLogsNumbersOnTheWayOut)
{
    EXPECT_EQ(AskWith("10.0.19045"), TRUE);
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|Win10AndHiger|", L"TraceOut|Win10AndHiger|Major=10  Minor=0   Version=1000"));
}

TEST_F(OsVersionTest, Windows10_VersionOfWindows81_IsFalse)
{
    EXPECT_EQ(AskWith("6.3.9600"), FALSE);
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|Win10AndHiger|", L"TraceOut|Win10AndHiger|Major=6  Minor=3   Version=603"));
}

TEST_F(OsVersionTest, Windows10_VersionWithoutDot_HasVersion0)
{
    EXPECT_EQ(AskWith("10"), FALSE);
    EXPECT_THAT(TestSupport::LogLines("Win10AndHiger"),
                ElementsAre(L"TraceIn|", L"TraceOut|Major=10  Minor=0   Version=0"));
}

TEST_F(OsVersionTest, Windows10_Boundary_IsVersion1000)
{
    EXPECT_EQ(AskWith("9.99"), FALSE);
    EXPECT_EQ(AskWith("10.0"), TRUE);
    EXPECT_EQ(AskWith("11.0.1"), TRUE);
    EXPECT_EQ(AskWith("6.400"), TRUE);
}

TEST_F(OsVersionTest, Windows10_TextThatIsNoVersion_IsFalse)
{
    for (const char* text : {"", "Windows 10", ".10", "10.", "10.x", "-10.0",
                             "\xE2\x82\xAC"
                             "10.0"})
        EXPECT_EQ(AskWith(text), FALSE) << text;
    EXPECT_EQ(AskWith(std::string(100'000, '1')), FALSE);
}

TEST_F(OsVersionTest, Windows10_AbsurdNumbers_DoNotOverflow)
{
    EXPECT_EQ(AskWith("2147483647.2147483647"), TRUE);
    EXPECT_EQ(TestSupport::LogLines("Win10AndHiger").back(),
              L"TraceOut|Major=2147483647  Minor=2147483647   Version=2147483547");
    EXPECT_EQ(AskWith("-2147483648.-2147483648"), FALSE);
    EXPECT_EQ(TestSupport::LogLines("Win10AndHiger").back(),
              L"TraceOut|Major=-2147483648  Minor=-2147483648   Version=-2147483648");
}

TEST_F(OsVersionTest, Windows10_NumberInsteadOfText_IsReadAsText)
{
    EXPECT_EQ(AskWith({{"i4", 10}}), FALSE);
    EXPECT_THAT(TestSupport::LogLines("Win10AndHiger"),
                ElementsAre(L"TraceIn|", L"TraceOut|Major=10  Minor=0   Version=0"));
}

TEST_F(OsVersionTest, Windows10_NoConnection_LogsQueryFailed)
{
    Facts::Instance().Set("/wmi/registered", false);
    EXPECT_EQ(Win10AndHiger(), FALSE);
    EXPECT_THAT(TestSupport::LogLines("Win10AndHiger"),
                ElementsAre(L"TraceIn|", L"Information|ExecuteQuery failed.", L"TraceOut|0"));
}

TEST_F(OsVersionTest, Windows10_QueryOrFirstStepFails_LogsQueryFailed)
{
    for (const char* call : {"IWbemServices::ExecQuery", "IEnumWbemClassObject::Next"})
    {
        CallPlan::Instance().Reset();
        CallPlan::Instance().Fail(call, E_FAIL);
        TestSupport::ClearLog();
        EXPECT_EQ(Win10AndHiger(), FALSE);
        EXPECT_THAT(TestSupport::OperationalLines(), ElementsAre(L"Information|Win10AndHiger|ExecuteQuery failed."))
            << call;
    }
}

TEST_F(OsVersionTest, Windows10_NoMemory_LogsQueryFailed)
{
    const Simulator::Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &NoBstr);
    EXPECT_EQ(Win10AndHiger(), FALSE);
    EXPECT_THAT(TestSupport::OperationalLines(), ElementsAre(L"Information|Win10AndHiger|ExecuteQuery failed."));
}

TEST_F(OsVersionTest, Windows10_NoVersionInAnswer_LogsPropertyFailed)
{
    const std::wstring line = L"Information|Win10AndHiger|GetPropertyValue for Version property failed.";
    EXPECT_EQ(AskWith({{"missing", true}}), FALSE);
    EXPECT_THAT(TestSupport::OperationalLines(), ElementsAre(line));
    EXPECT_EQ(AskWith({{"unknown", true}}), FALSE);
    EXPECT_THAT(TestSupport::OperationalLines(), ElementsAre(line));
    EXPECT_EQ(AskWith({{"hr", "0x80041001"}}), FALSE);
    EXPECT_THAT(TestSupport::OperationalLines(), ElementsAre(line));
}

TEST_F(OsVersionTest, Windows10_EmptyAnswerOrTimeOut_LogsPropertyFailed)
{
    for (const char* fact : {"/wmi/os/instances", "/wmi/next/timed-out"})
    {
        Facts::Instance().Clear();
        Facts::Instance().Set("/wmi/os/instances", 1);
        Facts::Instance().Set(fact,
                              std::string(fact) == "/wmi/os/instances" ? nlohmann::json(0) : nlohmann::json(true));
        TestSupport::ClearLog();
        EXPECT_EQ(Win10AndHiger(), FALSE);
        EXPECT_THAT(
            TestSupport::LogLines("Win10AndHiger"),
            ElementsAre(L"TraceIn|", L"Information|GetPropertyValue for Version property failed.", L"TraceOut|0"))
            << fact;
    }
}

TEST_F(OsVersionTest, Windows10_OnThreadInAnApartment_LeavesItThere)
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(AskWith("10.0"), TRUE);
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    EXPECT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
    CoUninitialize();
    EXPECT_EQ(CoGetApartmentType(&type, &qualifier), CO_E_NOTINITIALIZED);
}

TEST_F(OsVersionTest, Windows10_AnyOutcome_LeaksNothing)
{
    EXPECT_EQ(AskWith("10.0"), TRUE);
    const TestSupport::BstrLedger ledger;
    const unsigned before = TestSupport::OpenHandleCount();
    (void)AskWith("10.0");
    (void)AskWith({{"i4", 10}});
    (void)AskWith({{"missing", true}});
    EXPECT_THAT(ledger.LiveTexts(), testing::IsEmpty());
    EXPECT_GT(ledger.Allocations(), 0u);
    EXPECT_EQ(TestSupport::OpenHandleCount(), before);
}

TEST(Windows8, Ask_Always_VerifiesSixTwoOrGreater)
{
    const Simulator::Redirection<decltype(VerifyVersionInfoW)> verify("VerifyVersionInfoW", &NotedVerify);
    g_verification = Verification();
    EXPECT_EQ(IsWindows8OrGreater(), TRUE);
    EXPECT_EQ(g_verification.m_wanted.dwOSVersionInfoSize, sizeof(OSVERSIONINFOEXW));
    EXPECT_EQ(g_verification.m_wanted.dwMajorVersion, 6u);
    EXPECT_EQ(g_verification.m_wanted.dwMinorVersion, 2u);
    EXPECT_EQ(g_verification.m_wanted.wServicePackMajor, 0u);
    EXPECT_EQ(g_verification.m_dwTypes, DWORD(VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR));
    DWORDLONG condition = VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL);
    condition = VerSetConditionMask(condition, VER_MINORVERSION, VER_GREATER_EQUAL);
    condition = VerSetConditionMask(condition, VER_SERVICEPACKMAJOR, VER_GREATER_EQUAL);
    EXPECT_EQ(g_verification.m_nCondition, condition);
}

TEST(Windows8, Ask_NotConfirmed_IsFalse)
{
    const Simulator::Redirection<decltype(VerifyVersionInfoW)> verify("VerifyVersionInfoW", &NotedVerify);
    g_verification = Verification();
    g_verification.m_bAnswer = FALSE;
    EXPECT_EQ(IsWindows8OrGreater(), FALSE);
}

TEST(Windows8, Ask_AnyOutcome_TracesEntryAndResult)
{
    const Simulator::Redirection<decltype(VerifyVersionInfoW)> verify("VerifyVersionInfoW", &NotedVerify);
    g_verification = Verification();
    (void)IsWindows8OrGreater();
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|IsWindows8OrGreater|", L"TraceOut|IsWindows8OrGreater|1"));
}

// The system's own WMI, so that the allocations are the program's. Without trace records none of them is the log's.
TEST_F(RealWmi, Windows10_EachAllocationFails_IsFalseWithItsLine)
{
    TestSupport::PolicyKey policy(TestSupport::LoggingKey);
    policy.Text(L"LoggingType", L"EVENT").Text(L"MinLogLevel", L"Information").Text(L"MaxLogLevel", L"Diag");
    (void)Win10AndHiger();
    if (Orvik::Shared::IsLevelEnabled(Orvik::Shared::Level::TraceIn))
        GTEST_SKIP() << "The log of this process takes trace records since an earlier test";
    std::vector<std::wstring> lines;
    for (std::size_t nth = 1;; ++nth)
    {
        TestSupport::ClearLog();
        BOOL result = TRUE;
        bool hasBitten = false;
        {
            const AllocationFault fault(nth);
            result = Win10AndHiger();
            hasBitten = AllocationFault::HasBitten();
        }
        if (!hasBitten)
            break;
        EXPECT_EQ(result, FALSE) << nth;
        const std::vector<std::wstring> written = TestSupport::LogLines("Win10AndHiger");
        ASSERT_EQ(written.size(), 1u) << nth;
        lines.push_back(written.front());
    }
    EXPECT_THAT(lines, testing::Contains(L"Information|ExecuteQuery failed."));
    EXPECT_EQ(lines.back(), L"Information|GetPropertyValue for Version property failed.");
}

// What this system really is: run on prefixes of several Windows versions.
TEST_F(RealSystem, Versions_OfThisWindows_AreSeen)
{
    using RtlGetVersionFunction = LONG WINAPI(OSVERSIONINFOW*);
    auto* getVersion = reinterpret_cast<RtlGetVersionFunction*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    ASSERT_EQ(getVersion(&version), 0);
    const DWORD number = version.dwMajorVersion * 100 + version.dwMinorVersion;
    EXPECT_EQ(Win10AndHiger(), number >= 1000 ? TRUE : FALSE) << number;
    EXPECT_EQ(IsWindows8OrGreater(), number >= 602 ? TRUE : FALSE) << number;
}

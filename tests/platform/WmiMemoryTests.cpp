#include "platform/WmiNamespace.h"
#include "platform/WmiQuery.h"
#include "simulator/doubles/WbemClassObjectDouble.h"
#include "simulator/doubles/WbemLocatorDouble.h"
#include "simulator/doubles/WbemServicesDouble.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/platform/PlatformMachine.h"
#include "tests/support/AllocationFault.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <optional>

using Simulator::LiveObjects;
using Simulator::Redirection;

namespace
{
constexpr HRESULT g_hrNotInitialized = static_cast<HRESULT>(0x80041014);
constexpr const wchar_t* g_pszVersions = L"select Version from Win32_OperatingSystem";

// The doubles allocate as well: the allocation that fails is counted from the last call before the query's own ones,
// and none fails from the next call on.
std::size_t g_nth = 0;
std::optional<AllocationFault> g_fault;
bool g_nextCallReached = false;

decltype(CoCreateInstance)* g_create = nullptr;

HRESULT WINAPI FaultAfterCreate(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    const HRESULT hr = g_create(classId, outer, context, iid, object);
    g_fault.emplace(g_nth);
    return hr;
}

using ConnectFunction = HRESULT STDMETHODCALLTYPE(IWbemLocator*, BSTR, BSTR, BSTR, BSTR, long, BSTR, IWbemContext*,
                                                  IWbemServices**);
ConnectFunction* g_connect = nullptr;

HRESULT STDMETHODCALLTYPE ConnectWithoutFault(IWbemLocator* locator, BSTR path, BSTR user, BSTR password, BSTR locale,
                                              long flags, BSTR authority, IWbemContext* context,
                                              IWbemServices** services)
{
    g_fault.reset();
    g_nextCallReached = true;
    return g_connect(locator, path, user, password, locale, flags, authority, context, services);
}

using ExecFunction = HRESULT STDMETHODCALLTYPE(IWbemServices*, BSTR, BSTR, long, IWbemContext*, IEnumWbemClassObject**);
ExecFunction* g_exec = nullptr;

HRESULT STDMETHODCALLTYPE ExecWithoutFault(IWbemServices* services, BSTR language, BSTR text, long flags,
                                           IWbemContext* context, IEnumWbemClassObject** enumerator)
{
    g_fault.reset();
    g_nextCallReached = true;
    return g_exec(services, language, text, flags, context, enumerator);
}

using GetFunction = HRESULT STDMETHODCALLTYPE(IWbemClassObject*, LPCWSTR, long, VARIANT*, CIMTYPE*, long*);
GetFunction* g_get = nullptr;

HRESULT STDMETHODCALLTYPE FaultAfterGet(IWbemClassObject* object, LPCWSTR name, long flags, VARIANT* value,
                                        CIMTYPE* type, long* flavor)
{
    const HRESULT hr = g_get(object, name, flags, value, type, flavor);
    g_fault.emplace(g_nth);
    return hr;
}

// The texts "WQL" among the BSTRs that the program allocates.
decltype(SysAllocString)* g_allocate = nullptr;
int g_languages = 0;

BSTR WINAPI CountingAllocate(const OLECHAR* text)
{
    g_languages += text != nullptr && std::wcscmp(text, L"WQL") == 0 ? 1 : 0;
    return g_allocate(text);
}

// Operations during which one allocation after the other fails.
class WmiMemoryTest : public PlatformMachine
{
protected:
    ~WmiMemoryTest() override { g_fault.reset(); }

    static const wchar_t* Cimv2() { return NamespacePath(WmiNamespace::Cimv2); }

    // Runs the operation with its first, its second ... allocation failing, until it reaches the next
    // call. Returns how many allocations there were.
    template <class Operation>
    static std::size_t FailEachAllocation(Operation operation)
    {
        for (g_nth = 1;; ++g_nth)
        {
            g_nextCallReached = false;
            operation();
            g_fault.reset();
            if (g_nextCallReached)
                return g_nth - 1;
        }
    }
};

// The same with a connection, whose allocations lie between the making of the locator and its use.
class WmiConnectMemoryTest : public WmiMemoryTest
{
protected:
    WmiConnectMemoryTest()
    {
        g_create = m_creation.Original();
        g_connect = m_connection.Original<ConnectFunction>();
        g_nth = 0;
    }

private:
    const IWbemLocatorPtr m_spSample{new Simulator::WbemLocatorDouble, false};
    const MethodRedirection m_connection{m_spSample.GetInterfacePtr(), &IWbemLocator::ConnectServer,
                                         &ConnectWithoutFault};
    const Redirection<decltype(CoCreateInstance)> m_creation{"CoCreateInstance", &FaultAfterCreate};
};

// The code of the connection or of what it raises.
HRESULT ConnectCode(WmiQuery& query, const wchar_t* path)
{
    HRESULT hr = S_OK;
    const HRESULT hrRaised = RaisedCode([&] { hr = query.Connect(path); });
    return FAILED(hrRaised) ? hrRaised : hr;
}
} // namespace

TEST_F(WmiConnectMemoryTest, Construct_AnAllocationFails_LeavesQueryUnconnected)
{
    EXPECT_EQ(FailEachAllocation(
                  []
                  {
                      WmiQuery query(Cimv2());
                      g_fault.reset();
                      EXPECT_EQ(query.Query(g_pszVersions, 0x30),
                                g_nextCallReached ? static_cast<HRESULT>(WBEM_S_NO_ERROR) : g_hrNotInitialized)
                          << g_nth;
                  }),
              2u);
}

TEST_F(WmiConnectMemoryTest, Connect_AnAllocationFails_RaisesOutOfMemoryAndHoldsNothing)
{
    WmiQuery query(Cimv2());
    EXPECT_EQ(FailEachAllocation(
                  [&]
                  {
                      const HRESULT hr = ConnectCode(query, Cimv2());
                      g_fault.reset();
                      EXPECT_EQ(hr, g_nextCallReached ? S_OK : E_OUTOFMEMORY) << g_nth;
                      EXPECT_EQ(LiveObjects::Count("WbemServices"), g_nextCallReached ? 1 : 0) << g_nth;
                      EXPECT_EQ(query.Query(g_pszVersions, 0x30),
                                g_nextCallReached ? static_cast<HRESULT>(WBEM_S_NO_ERROR) : g_hrNotInitialized)
                          << g_nth;
                  }),
              2u);
}

TEST_F(WmiMemoryTest, Query_AnAllocationFails_GivesOutOfMemoryAndHoldsNoEnumerator)
{
    WmiQuery query(Cimv2());
    const IWbemServicesPtr spSample(new Simulator::WbemServicesDouble("root\\cimv2"), false);
    const MethodRedirection redirection(spSample.GetInterfacePtr(), &IWbemServices::ExecQuery, &ExecWithoutFault);
    g_exec = redirection.Original<ExecFunction>();
    EXPECT_GE(FailEachAllocation(
                  [&]
                  {
                      g_fault.emplace(g_nth);
                      const HRESULT hr = query.Query(g_pszVersions, 0x30);
                      g_fault.reset();
                      EXPECT_EQ(hr, g_nextCallReached ? static_cast<HRESULT>(WBEM_S_NO_ERROR) : E_OUTOFMEMORY) << g_nth;
                      EXPECT_EQ(LiveObjects::Count("EnumWbemClassObject"), g_nextCallReached ? 1 : 0) << g_nth;
                  }),
              1u);
}

TEST_F(WmiMemoryTest, Get_CopyOfTheTextFails_GivesOutOfMemoryAndLeavesTextAlone)
{
    WmiQuery query(Cimv2());
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    const IWbemClassObjectPtr spSample(new Simulator::WbemClassObjectDouble("Sample", nlohmann::json::object()), false);
    const MethodRedirection redirection(spSample.GetInterfacePtr(), &IWbemClassObject::Get, &FaultAfterGet);
    g_get = redirection.Original<GetFunction>();
    g_nth = 1;
    std::wstring text = L"before";
    EXPECT_EQ(query.GetPropertyText(L"Version", text), E_OUTOFMEMORY);
    EXPECT_TRUE(AllocationFault::HasBitten());
    g_fault.reset();
    EXPECT_EQ(text, L"before");
    g_nth = 0;
    EXPECT_EQ(query.GetPropertyText(L"Version", text), S_OK);
    EXPECT_NE(text, L"before");
}

TEST_F(WmiMemoryTest, Language_BeforeAndAtTheFirstQuery_IsAllocatedOnceThere)
{
    const testing::UnitTest& program = *testing::UnitTest::GetInstance();
    if (program.test_to_run_count() != 1 || GTEST_FLAG_GET(repeat) != 1)
        GTEST_SKIP() << "an earlier test has asked a query already: only a process of its own shows the first one";
    const Redirection<decltype(SysAllocString)> counting("SysAllocString", &CountingAllocate);
    g_allocate = counting.Original();
    WmiQuery query(Cimv2());
    EXPECT_EQ(g_languages, 0);
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    EXPECT_EQ(g_languages, 1);
}

TEST_F(WmiMemoryTest, Language_AfterTheFirstQuery_IsKeptForAllOthers)
{
    {
        WmiQuery first(Cimv2());
        ASSERT_EQ(first.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    }
    const Redirection<decltype(SysAllocString)> counting("SysAllocString", &CountingAllocate);
    g_allocate = counting.Original();
    g_languages = 0;
    WmiQuery second(Cimv2());
    EXPECT_EQ(second.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    EXPECT_EQ(CallDetails("IWbemServices::ExecQuery", 1)["language"], "WQL");
    EXPECT_EQ(g_languages, 0);
}

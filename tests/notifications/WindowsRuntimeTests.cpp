#include "notifications/WindowsRuntime.h"

#include "notifications/DesktopToast.h"
#include "platform/ComApartment.h"
#include "simulator/model/CallPlan.h"
#include "simulator/redirect/ImportRedirection.h"
#include "simulator/toasts/RuntimeText.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <cwchar>
#include <optional>
#include <string_view>

using Simulator::CallPlan;
using Simulator::Redirection;
using Simulator::RuntimeText;
using WindowsRuntime::RuntimeString;

namespace
{
// What a system lacks, and the error that its look-up leaves.
struct Lacking
{
    bool m_bLibrary = false;
    const char* m_pFunction = "";
    DWORD m_dwError = ERROR_SUCCESS;
};
Lacking g_lacking;
decltype(GetModuleHandleW)* g_getModuleHandle = nullptr;
decltype(GetProcAddress)* g_getProcAddress = nullptr;

HMODULE WINAPI LackingModuleHandle(LPCWSTR name)
{
    if (!g_lacking.m_bLibrary || name == nullptr || std::wcscmp(name, L"combase.dll") != 0)
        return g_getModuleHandle(name);
    SetLastError(g_lacking.m_dwError);
    return nullptr;
}

FARPROC WINAPI LackingProcAddress(HMODULE module, LPCSTR name)
{
    if (std::string_view(name) != g_lacking.m_pFunction)
        return g_getProcAddress(module, name);
    SetLastError(g_lacking.m_dwError);
    return nullptr;
}

class WindowsRuntimeTest : public ToastMachine
{
protected:
    WindowsRuntimeTest()
    {
        g_lacking = {};
        // Making a redirection calls GetModuleHandleW itself.
        m_modules.emplace("GetModuleHandleW", &LackingModuleHandle);
        g_getModuleHandle = m_modules->Original();
        m_functions.emplace("GetProcAddress", &LackingProcAddress);
        g_getProcAddress = m_functions->Original();
    }
    ~WindowsRuntimeTest() override { g_lacking = {}; }

    DesktopToast m_toast{nullptr, nullptr};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};

private:
    std::optional<Redirection<decltype(GetModuleHandleW)>> m_modules;
    std::optional<Redirection<decltype(GetProcAddress)>> m_functions; // stays the last one made
};
} // namespace

TEST_F(WindowsRuntimeTest, RuntimeString_AnyText_HoldsIt)
{
    const std::wstring texts[] = {L"x", L"two words", L"\x6E29\xD83D\xDD0B", std::wstring(L"a\0b", 3),
                                  std::wstring(100'000, L'y')};
    for (const std::wstring& text : texts)
    {
        RuntimeString string;
        EXPECT_EQ(string.Create(text), S_OK);
        EXPECT_EQ(RuntimeText::View(string.Get()), text);
    }
}

TEST_F(WindowsRuntimeTest, RuntimeString_PartOfALongerText_HoldsThatPart)
{
    RuntimeString string;
    EXPECT_EQ(string.Create(std::wstring_view(L"title and more").substr(0, 5)), S_OK);
    EXPECT_EQ(RuntimeText::View(string.Get()), L"title");
}

TEST_F(WindowsRuntimeTest, RuntimeString_EmptyText_IsTheNullString)
{
    RuntimeString string;
    EXPECT_EQ(string.Create(L""), S_OK);
    EXPECT_EQ(string.Get(), nullptr);
}

TEST_F(WindowsRuntimeTest, RuntimeString_NeverCreated_IsNullAndDeletesNothing)
{
    {
        const RuntimeString string;
        EXPECT_EQ(string.Get(), nullptr);
    }
    EXPECT_EQ(RuntimeStringLedger::Deletions(), 0u);
}

TEST_F(WindowsRuntimeTest, RuntimeString_Ends_DeletesOnce)
{
    {
        RuntimeString string;
        ASSERT_EQ(string.Create(L"text"), S_OK);
    }
    EXPECT_EQ(RuntimeStringLedger::Deletions(), 1u);
}

TEST_F(WindowsRuntimeTest, RuntimeString_CreationFails_IsNullAndDeletesNothing)
{
    CallPlan::Instance().Fail("WindowsCreateString", E_OUTOFMEMORY);
    {
        RuntimeString string;
        EXPECT_EQ(string.Create(L"text"), E_OUTOFMEMORY);
        EXPECT_EQ(string.Get(), nullptr);
    }
    EXPECT_EQ(RuntimeStringLedger::Deletions(), 0u);
}

TEST_F(WindowsRuntimeTest, GetActivationFactory_ClassUnknown_GivesItsErrorAndNull)
{
    const TestSupport::PolicyKey classes(L"Software\\Microsoft\\WindowsRuntime\\ActivatableClassId");
    void* factory = this;
    EXPECT_EQ(WindowsRuntime::GetActivationFactory(L"Windows.No.Such.Class", IID_IUnknown, &factory),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(factory, nullptr);
}

TEST_F(WindowsRuntimeTest, GetActivationFactory_InterfaceUnknown_GivesNoInterfaceAndNull)
{
    void* factory = this;
    EXPECT_EQ(WindowsRuntime::GetActivationFactory(ToastAbi::ToastNotificationClass,
                                                   __uuidof(ToastAbi::IToastNotificationManagerStatics), &factory),
              E_NOINTERFACE);
    EXPECT_EQ(factory, nullptr);
}

TEST_F(WindowsRuntimeTest, GetActivationFactory_NameFails_GivesItsErrorAndNull)
{
    CallPlan::Instance().Fail("WindowsCreateString", E_OUTOFMEMORY);
    void* factory = this;
    EXPECT_EQ(WindowsRuntime::GetActivationFactory(ToastAbi::ToastNotificationClass, IID_IUnknown, &factory),
              E_OUTOFMEMORY);
    EXPECT_EQ(factory, nullptr);
}

TEST_F(WindowsRuntimeTest, DisplayToast_LibraryMissing_FailsWithTheLookUpsError)
{
    g_lacking = {.m_bLibrary = true, .m_dwError = ERROR_MOD_NOT_FOUND};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
    EXPECT_TRUE(Calls().empty());
    EXPECT_THAT(TestSupport::LogLines(), testing::ElementsAre(L"TraceIn|DesktopToast::DisplayToast|",
                                                              L"TraceOut|DesktopToast::DisplayToast|hr: 0x8007007E"));
}

TEST_F(WindowsRuntimeTest, DisplayToast_AFunctionMissing_FailsWithTheLookUpsError)
{
    for (const char* function : {"WindowsCreateString", "WindowsDeleteString", "RoGetActivationFactory"})
    {
        StartOver();
        g_lacking = {.m_pFunction = function, .m_dwError = ERROR_PROC_NOT_FOUND};
        EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND)) << function;
        EXPECT_TRUE(Shown().empty()) << function;
        EXPECT_EQ(Leftovers(), "") << function;
        EXPECT_TRUE(TestSupport::LogLines("DesktopToast::CreateToastXml").empty()) << function;
    }
}

TEST_F(WindowsRuntimeTest, DisplayToast_FunctionMissingWithoutAnError_StillFails)
{
    g_lacking = {.m_pFunction = "RoGetActivationFactory", .m_dwError = ERROR_SUCCESS};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), E_FAIL);
    g_lacking = {.m_bLibrary = true, .m_dwError = ERROR_SUCCESS};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), E_FAIL);
}

TEST_F(WindowsRuntimeTest, DisplayToast_LibraryThereAgain_ShowsToast)
{
    g_lacking = {.m_bLibrary = true, .m_dwError = ERROR_MOD_NOT_FOUND};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
    g_lacking = {};
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
}

#include "notifications/DesktopToast.h"

#include "notifications/WindowsRuntime.h"
#include "platform/ComApartment.h"
#include "simulator/model/CallPlan.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/ShellLinkMachine.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <shlobj.h>

#include <optional>

using namespace ToastAbi;
using Simulator::CallPlan;
using Simulator::Redirection;

namespace
{
// The doubles allocate as well. So the allocation that fails is counted from the last call before the code under test
// allocates, or only among those that are as large as a very long text.
std::size_t g_nth = 0;
std::optional<AllocationFault> g_fault;

constexpr std::size_t LongText = 100'000;

BOOL WINAPI FaultAfterSpecialFolder(HWND, LPWSTR path, int, BOOL)
{
    std::wcscpy(path, L"C:\\Program Files (x86)");
    g_fault.emplace(g_nth);
    return TRUE;
}

decltype(GetEnvironmentVariableW)* g_getEnvironmentVariable = nullptr;

DWORD WINAPI FaultAfterEnvironmentVariable(LPCWSTR name, LPWSTR value, DWORD size)
{
    const DWORD length = g_getEnvironmentVariable(name, value, size);
    g_fault.emplace(g_nth);
    return length;
}

using CreateToastFunction = HRESULT STDMETHODCALLTYPE(IToastNotificationFactory*, IXmlDocument*, IToastNotification**);
CreateToastFunction* g_createToast = nullptr;

HRESULT STDMETHODCALLTYPE FaultAfterCreateToast(IToastNotificationFactory* factory, IXmlDocument* document,
                                                IToastNotification** toast)
{
    const HRESULT hr = g_createToast(factory, document, toast);
    g_fault.emplace(g_nth);
    return hr;
}

class DesktopToastMemoryTest : public ToastMachine
{
protected:
    DesktopToastMemoryTest() { g_nth = 1; }
    ~DesktopToastMemoryTest() override { g_fault.reset(); }

    // Shows a toast whose making fails; the call that was the last one before that.
    std::string LastCallBeforeFailure(const std::wstring& title, const std::wstring& text)
    {
        StartOver();
        const HRESULT hr = m_toast.DisplayToast(title, text);
        EXPECT_TRUE(AllocationFault::HasBitten());
        g_fault.reset();
        EXPECT_EQ(hr, E_OUTOFMEMORY);
        EXPECT_TRUE(Shown().empty());
        EXPECT_EQ(Leftovers(), "");
        EXPECT_TRUE(
            TestSupport::Logged(Orvik::Shared::Level::TraceOut, "DesktopToast::DisplayToast", L"hr: 0x8007000E"));
        return Calls().back();
    }

    DesktopToast m_toast{nullptr, nullptr};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
};

class DesktopToastShortcutMemoryTest : public ShellLinkMachine
{
};
} // namespace

TEST_F(DesktopToastMemoryTest, DisplayToast_NoMemoryForTheImagePath_Fails)
{
    const Redirection<decltype(SHGetSpecialFolderPathW)> folder("SHGetSpecialFolderPathW", &FaultAfterSpecialFolder);
    for (g_nth = 1; g_nth <= 2; ++g_nth)
        EXPECT_EQ(LastCallBeforeFailure(L"Title", L"Text"), "IToastNotificationManagerStatics::GetTemplateContent");
}

TEST_F(DesktopToastMemoryTest, DisplayToast_NoMemoryForTheTexts_Fails)
{
    const std::wstring text(LongText, L't');
    for (const std::size_t nth : {1, 2})
    {
        g_fault.emplace(nth, LongText);
        EXPECT_EQ(LastCallBeforeFailure(text, text), "IXmlNode::AppendChild") << nth;
        EXPECT_EQ(CallPlan::Instance().CallCount("IXmlNode::AppendChild"), 1u) << nth; // that of the image
    }
}

TEST_F(DesktopToastMemoryTest, DisplayToast_NoMemoryForTheHandler_Fails)
{
    IToastNotificationFactoryPtr spFactory;
    ASSERT_EQ(WindowsRuntime::GetActivationFactory(ToastNotificationClass, __uuidof(IToastNotificationFactory),
                                                   reinterpret_cast<void**>(&spFactory)),
              S_OK);
    const MethodRedirection redirection(spFactory.GetInterfacePtr(),
                                        &IToastNotificationFactory::CreateToastNotification, &FaultAfterCreateToast);
    g_createToast = redirection.Original<CreateToastFunction>();
    spFactory = nullptr;
    EXPECT_EQ(LastCallBeforeFailure(L"Title", L"Text"), "IToastNotificationFactory::CreateToastNotification");
}

TEST_F(DesktopToastMemoryTest, SetImageSrc_NoMemoryForTheAddress_Fails)
{
    const IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastImageAndText04);
    const std::wstring path(LongText, L'p');
    StartOver();
    g_fault.emplace(1, LongText);
    EXPECT_EQ(m_toast.SetImageSrc(path, spDocument), E_OUTOFMEMORY);
    g_fault.reset();
    EXPECT_EQ(Calls().back(), "IXmlNamedNodeMap::GetNamedItem");
    EXPECT_TRUE(TestSupport::Logged(Orvik::Shared::Level::TraceOut, "DesktopToast::SetImageSrc", L"hr: 0x8007000E"));
}

TEST_F(DesktopToastMemoryTest, DisplayToast_AfterALackOfMemory_ShowsTheNextToast)
{
    const std::wstring text(LongText, L't');
    g_fault.emplace(1, LongText);
    (void)LastCallBeforeFailure(text, text);
    EXPECT_EQ(m_toast.DisplayToast(text, text), S_OK);
    EXPECT_EQ(Shown().size(), 1u);
}

TEST_F(DesktopToastShortcutMemoryTest, TryCreate_NoMemoryForThePath_FailsAndCallsNothing)
{
    const Redirection<decltype(GetEnvironmentVariableW)> variable("GetEnvironmentVariableW",
                                                                  &FaultAfterEnvironmentVariable);
    g_getEnvironmentVariable = variable.Original();
    for (g_nth = 1; g_nth <= 2; ++g_nth)
    {
        EXPECT_EQ(m_toast.TryCreateShortcut(), E_OUTOFMEMORY) << g_nth;
        EXPECT_TRUE(AllocationFault::HasBitten());
        g_fault.reset();
        EXPECT_TRUE(Calls().empty()) << g_nth;
        EXPECT_FALSE(PathExists(m_startMenu.ShortcutPath())) << g_nth;
    }
    g_nth = 0;
    EXPECT_EQ(m_toast.TryCreateShortcut(), S_OK);
}

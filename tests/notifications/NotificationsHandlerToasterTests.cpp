#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/NotificationsMachine.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"

#include <comdef.h>
#include <roapi.h>

#include <gmock/gmock.h>

#include <new>
#include <optional>
#include <utility>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogCount;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
class NotificationsHandlerToasterTest : public NotificationsMachine
{
protected:
    void Show() { m_handler.ShowToaster(0, 341, L"Title", L"Text", L"C:\\tool.exe", L"extra"); }
};

constexpr const wchar_t* g_componentFailed =
    L"pIPlixNotification.CreateInstance of orvikplixutils.orvikPlixNotification failed., hr = 0x";

HRESULT WINAPI RaiseComError(HSTRING, REFIID, void**)
{
    throw _com_error(static_cast<HRESULT>(0x80041234));
}
HRESULT WINAPI RaiseBadAlloc(HSTRING, REFIID, void**)
{
    throw std::bad_alloc();
}

HRESULT WINAPI RaiseInLookUp(LPCOLESTR, LPCLSID)
{
    throw _com_error(static_cast<HRESULT>(0x80041234));
}
HRESULT WINAPI RaiseInCreation(REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID*)
{
    throw std::bad_alloc();
}

UINT g_failingText;
decltype(LoadStringW)* g_pfnLoadString;
std::optional<AllocationFault> g_fault;

// Nothing is left to keep one of the texts in.
int WINAPI LoadStringThenFailW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity)
{
    const int length = g_pfnLoadString(module, id, buffer, capacity);
    if (id == g_failingText)
        g_fault.emplace(1);
    return length;
}

unsigned g_nRemaining;
decltype(SysAllocString)* g_pfnSysAllocString;

// Works so often, then fails once.
BSTR WINAPI FailOnce(const OLECHAR* text)
{
    return g_nRemaining-- == 0 ? nullptr : g_pfnSysAllocString(text);
}
} // namespace

TEST_F(NotificationsHandlerToasterTest, Component_Present_ShowsTitleAndTextAlone)
{
    Show();
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"Title", "Text", ""}));
    const std::wstring xml = ShownXml();
    for (const wchar_t* kept : {L"341", L"tool.exe", L"extra"})
        EXPECT_EQ(xml.find(kept), std::wstring::npos) << kept;
    EXPECT_THAT(LogLines(ShowOne), ElementsAre(L"TraceIn|", L"Verbose|Call Windows Toaster Message",
                                               L"Verbose|Title: Title", L"Verbose|Text: Text", L"TraceOut|"));
}

TEST_F(NotificationsHandlerToasterTest, Component_IsCreatedAsItsProgIdSays)
{
    Show();
    EXPECT_THAT(DetailsOf("CLSIDFromProgID", "progid"), ElementsAre("orvikplixutils.orvikPlixNotification"));
    EXPECT_THAT(DetailsOf("CoCreateInstance", "class"), ElementsAre("PlixNotification"));
    EXPECT_THAT(DetailsOf("CoCreateInstance", "context"), ElementsAre(0x17));
    EXPECT_THAT(DetailsOf("CoCreateInstance", "aggregated"), ElementsAre(false));
    EXPECT_THAT(DetailsOf("PlixNotification::QueryInterface", "iid"),
                testing::Contains("{3ABCD024-1E97-48C4-A7D4-C116944A4967}"));
}

TEST_F(NotificationsHandlerToasterTest, Component_IsGivenBackOnceTheToastIsShown)
{
    Show();
    std::vector<std::string> order;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "CLSIDFromProgID" || entry.m_strSubject == "RoGetActivationFactory" ||
            entry.m_strSubject == "IToastNotifier::Show" ||
            (entry.m_strSubject == "PlixNotification::Release" && entry.m_details.at("count") == 0))
            order.push_back(entry.m_strSubject);
    }
    EXPECT_THAT(order, ElementsAre("CLSIDFromProgID", "RoGetActivationFactory", "RoGetActivationFactory",
                                   "IToastNotifier::Show", "PlixNotification::Release"));
    EXPECT_EQ(LiveObjects::Count("PlixNotification"), 0);
}

TEST_F(NotificationsHandlerToasterTest, Component_Missing_OneLineForEachMessageAndNoToast)
{
    Facts::Instance().Set("/notification/registered", false);
    SetMessages({2, 3, 1, 8});
    m_handler.ShowUsbCMessages(0);
    m_handler.ShowBillboardMessage();
    EXPECT_EQ(LogCount(Level::Information, ShowOne, std::wstring(g_componentFailed) + L"800401F3"), 3u);
    EXPECT_EQ(LogLines(ShowOne).size(), 3u * 3u);
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(DetailsOf("RoGetActivationFactory", "class"), IsEmpty());
}

TEST_F(NotificationsHandlerToasterTest, Component_AnyStepFails_NoToastAndTheNextIsShown)
{
    for (const char* step : {"CLSIDFromProgID", "CoCreateInstance", "OleRun", "PlixNotification::QueryInterface"})
    {
        StartOver();
        CallPlan::Instance().Fail(step, E_ACCESSDENIED);
        // COM asks for a running state first.
        if (std::string(step) == "PlixNotification::QueryInterface")
            CallPlan::Instance().Fail(step, E_ACCESSDENIED, 1, Simulator::Repeat::Always);
        Show();
        EXPECT_THAT(
            LogLines(ShowOne),
            ElementsAre(L"TraceIn|", std::wstring(L"Information|") + g_componentFailed + L"80070005", L"TraceOut|"))
            << step;
        EXPECT_THAT(Shown(), IsEmpty()) << step;
        StartOver();
        Show();
        EXPECT_EQ(Shown().size(), 1u) << step;
    }
}

TEST_F(NotificationsHandlerToasterTest, Toast_Fails_NextMessageIsShown)
{
    SetMessages({2, 3});
    CallPlan::Instance().Fail("IToastNotifier::Show", E_FAIL);
    m_handler.ShowUsbCMessages(0);
    EXPECT_THAT(ShownTexts(), ElementsAre("USB device is requesting more power than system can provide."));
}

TEST_F(NotificationsHandlerToasterTest, Toast_Raises_EndsTheCallWithoutAToast)
{
    {
        const Redirection<decltype(RoGetActivationFactory)> raising("RoGetActivationFactory", &RaiseComError);
        EXPECT_NO_THROW(Show());
    }
    EXPECT_TRUE(Logged(Level::Information, ShowOne, L"Exception occurred, [hr:0x80041234]"));
    {
        const Redirection<decltype(RoGetActivationFactory)> raising("RoGetActivationFactory", &RaiseBadAlloc);
        EXPECT_NO_THROW(Show());
    }
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_EQ(LiveObjects::Count("PlixNotification"), 0);
    Show();
    EXPECT_EQ(Shown().size(), 1u);
}

TEST_F(NotificationsHandlerToasterTest, Component_LookUpOrCreationRaises_EndsTheCallWithoutAToast)
{
    {
        const Redirection<decltype(CLSIDFromProgID)> raising("CLSIDFromProgID", &RaiseInLookUp);
        EXPECT_NO_THROW(Show());
    }
    EXPECT_THAT(LogLines(ShowOne),
                ElementsAre(L"TraceIn|", L"Information|Exception occurred, [hr:0x80041234]", L"TraceOut|"));
    StartOver();
    {
        const Redirection<decltype(CoCreateInstance)> raising("CoCreateInstance", &RaiseInCreation);
        EXPECT_NO_THROW(Show());
    }
    EXPECT_THAT(LogLines(ShowOne),
                ElementsAre(L"TraceIn|", L"Information|Exception occurred, [hr:0x8007000E]", L"TraceOut|"));
    EXPECT_THAT(Shown(), IsEmpty());
    Show();
    EXPECT_EQ(Shown().size(), 1u);
}

TEST_F(NotificationsHandlerToasterTest, Messages_NoMemoryInOne_TheNextAreShown)
{
    SetMessages({2, 3, 1, 4});
    const Redirection<decltype(LoadStringW)> failing("LoadStringW", &LoadStringThenFailW);
    g_pfnLoadString = failing.Original();
    const std::vector<std::string> all = {"The device plugged into the USB-C port cannot charge your PC.",
                                          "USB device is requesting more power than system can provide.",
                                          "Charging from multiple USB ports may have limited support."};
    const std::pair<UINT, std::vector<std::string>> lost[] = {{IDS_USBC_CANNOT_CHARGE, {all[1], all[2]}},
                                                              {IDS_USBC_MORE_POWER_REQUESTED, {all[0], all[2]}},
                                                              {IDS_ADAPTER_HIGHER_CAPACITY, all},
                                                              {IDS_USBC_MULTIPLE_CHARGERS, {all[0], all[1]}},
                                                              {IDS_USBC_TITLE, {}}};
    for (const auto& [failingText, shown] : lost)
    {
        StartOver();
        g_failingText = failingText;
        EXPECT_NO_THROW(m_handler.ShowUsbCMessages(0)) << failingText;
        EXPECT_TRUE(g_fault && AllocationFault::HasBitten()) << failingText;
        g_fault.reset();
        EXPECT_EQ(ShownTexts(), shown) << failingText;
        EXPECT_EQ(LogCount(Level::Information, ShowAll, L"Exception occurred, [hr:0x8007000E]"), 1u) << failingText;
        EXPECT_EQ(LogCount(Level::Verbose, ShowAll, L"message #3, message id = 4"), shown.empty() ? 0u : 1u);
    }
}

TEST_F(NotificationsHandlerToasterTest, Messages_TextCannotBeAllocated_AreNotShownAndTheNextReadingIs)
{
    SetMessages({2});
    std::size_t raised = 0;
    for (unsigned nth = 0;; ++nth)
    {
        StartOver();
        g_nRemaining = nth;
        {
            const Redirection<decltype(SysAllocString)> failing("SysAllocString", &FailOnce);
            g_pfnSysAllocString = failing.Original();
            EXPECT_NO_THROW(m_handler.ShowUsbCMessages(0));
        }
        if (!ShownTexts().empty())
            break;
        raised += LogCount(Level::Information, ShowAll, L"Exception occurred, [hr:0x8007000E]");
        EXPECT_THAT(m_handler.PortMessages(), IsEmpty());
        ASSERT_LT(nth, 50u);
    }
    EXPECT_GE(raised, 5u);
}

TEST_F(NotificationsHandlerToasterTest, ManyRounds_LeaveNothing)
{
    SetMessages({2, 3, 1});
    for (int i = 0; i < 20; ++i)
    {
        m_handler.ShowUsbCMessages(0);
        m_desktop.Reset();
        EXPECT_EQ(Leftovers(), "");
    }
}

#include "notifications/DesktopToast.h"

#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

#include <algorithm>

using Orvik::Shared::Level::TraceOut;
using Simulator::CallPlan;
using testing::ElementsAre;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

struct Step
{
    const char* m_pCall;
    unsigned m_nNth;
};

// Every call of a toast, in order of the first one of each name.
constexpr Step g_steps[] = {
    {"WindowsCreateString", 1}, // the manager's class
    {"WindowsCreateString", 2}, // "image"
    {"WindowsCreateString", 3}, // "src"
    {"WindowsCreateString", 4}, // the image's address
    {"WindowsCreateString", 5}, // "text"
    {"WindowsCreateString", 6}, // the title
    {"WindowsCreateString", 7}, // the text
    {"WindowsCreateString", 8}, // the application id
    {"WindowsCreateString", 9}, // the toast's class
    {"RoGetActivationFactory", 1},
    {"RoGetActivationFactory", 2},
    {"ToastNotificationManager::QueryInterface", 1},
    {"IToastNotificationManagerStatics::GetTemplateContent", 1},
    {"IXmlDocument::GetElementsByTagName", 1},
    {"IXmlDocument::GetElementsByTagName", 2},
    {"IXmlNodeList::Item", 1},
    {"IXmlNodeList::Item", 2},
    {"IXmlNodeList::Item", 3},
    {"IXmlNode::get_Attributes", 1},
    {"IXmlNamedNodeMap::GetNamedItem", 1},
    {"IXmlDocument::CreateTextNode", 1},
    {"IXmlDocument::CreateTextNode", 2},
    {"IXmlDocument::CreateTextNode", 3},
    {"XmlText::QueryInterface", 1},
    {"XmlText::QueryInterface", 2},
    {"XmlText::QueryInterface", 3},
    {"IXmlNode::AppendChild", 1},
    {"IXmlNode::AppendChild", 2},
    {"IXmlNode::AppendChild", 3},
    {"IXmlNodeList::get_Length", 1},
    {"IToastNotificationManagerStatics::CreateToastNotifierWithId", 1},
    {"ToastNotificationFactory::QueryInterface", 1},
    {"IToastNotificationFactory::CreateToastNotification", 1},
    {"IToastNotification::add_Activated", 1},
    {"IToastNotification::add_Dismissed", 1},
    {"IToastNotification::add_Failed", 1},
    {"IToastNotifier::Show", 1},
};

class DesktopToastFailureTest : public ToastMachine
{
protected:
    DesktopToast m_toast{nullptr, nullptr};
};
} // namespace

TEST_F(DesktopToastFailureTest, Steps_OfOneToast_AreAllListedHere)
{
    ASSERT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    for (const std::string& call : Calls())
    {
        const std::size_t listed = std::count_if(std::begin(g_steps), std::end(g_steps),
                                                 [&call](const Step& step) { return call == step.m_pCall; });
        // DllGetActivationFactory is what Windows itself calls.
        EXPECT_EQ(listed, call == "DllGetActivationFactory" ? 0u : CallPlan::Instance().CallCount(call)) << call;
    }
}

TEST_F(DesktopToastFailureTest, DisplayToast_AStepFails_GivesItsCodeAndNoToast)
{
    for (const Step& step : g_steps)
    {
        SCOPED_TRACE(step.m_pCall + std::string(" ") + std::to_string(step.m_nNth));
        StartOver();
        CallPlan::Instance().Fail(step.m_pCall, g_hrPlanned, step.m_nNth);
        EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
        EXPECT_EQ(CallPlan::Instance().FailedCount(), 1u);
        EXPECT_EQ(Calls().back(), step.m_pCall); // nothing is tried after it
        EXPECT_TRUE(Shown().empty());
        EXPECT_EQ(Leftovers(), "");
        EXPECT_TRUE(TestSupport::Logged(TraceOut, "DesktopToast::DisplayToast", L"hr: 0x80041234"));
        EXPECT_TRUE(TestSupport::NotLogged(Orvik::Shared::Level::Verbose, "DesktopToast::CreateToast",
                                           L"Toast Notifier Shown"));
    }
}

TEST_F(DesktopToastFailureTest, DisplayToast_AfterAFailure_ShowsNextToast)
{
    for (const Step& step : g_steps)
    {
        StartOver();
        CallPlan::Instance().Fail(step.m_pCall, g_hrPlanned, step.m_nNth);
        EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned) << step.m_pCall;
        EXPECT_EQ(m_toast.DisplayToast(L"Next", L"Text"), S_OK) << step.m_pCall;
        ASSERT_EQ(Shown().size(), 1u) << step.m_pCall;
        EXPECT_EQ(Shown()[0]["title"], "Next") << step.m_pCall;
    }
}

TEST_F(DesktopToastFailureTest, Trace_DocumentFails_EveryFunctionOnTheWayTellsTheCode)
{
    CallPlan::Instance().Fail("IXmlNode::AppendChild", g_hrPlanned, 1);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|DesktopToast::DisplayToast|", L"TraceIn|DesktopToast::CreateToastXml|",
                            L"Verbose|DesktopToast::CreateToastXml|Title: Title",
                            L"Verbose|DesktopToast::CreateToastXml|Text: Text", L"TraceIn|DesktopToast::SetImageSrc|",
                            L"TraceIn|DesktopToast::SetNodeValueString|",
                            L"TraceOut|DesktopToast::SetNodeValueString|hr: 0x80041234",
                            L"TraceOut|DesktopToast::SetImageSrc|hr: 0x80041234",
                            L"TraceOut|DesktopToast::CreateToastXml|hr: 0x80041234",
                            L"TraceOut|DesktopToast::DisplayToast|hr: 0x80041234"));
}

TEST_F(DesktopToastFailureTest, Trace_SecondTextFails_SetTextValuesTellsTheCode)
{
    CallPlan::Instance().Fail("IXmlNode::AppendChild", g_hrPlanned, 3);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
    EXPECT_THAT(TestSupport::LogLines("DesktopToast::SetTextValues"),
                ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x80041234"));
    EXPECT_THAT(TestSupport::LogLines("DesktopToast::SetImageSrc"),
                ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x00000000"));
    EXPECT_TRUE(TestSupport::LogLines("DesktopToast::CreateToast").empty());
}

TEST_F(DesktopToastFailureTest, Log_ActivatedIsRefused_NamesNoRegistration)
{
    CallPlan::Instance().Fail("IToastNotification::add_Activated", g_hrPlanned);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
    EXPECT_THAT(TestSupport::LogLines("DesktopToast::CreateToast"),
                ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x80041234"));
}

TEST_F(DesktopToastFailureTest, Log_DismissedIsRefused_NamesTheOneBefore)
{
    CallPlan::Instance().Fail("IToastNotification::add_Dismissed", g_hrPlanned);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
    EXPECT_THAT(
        TestSupport::LogLines("DesktopToast::CreateToast"),
        ElementsAre(L"TraceIn|", L"Verbose|Toast Notifier/Event Handler Activated", L"TraceOut|hr: 0x80041234"));
}

TEST_F(DesktopToastFailureTest, Log_FailedIsRefused_NamesTheTwoBefore)
{
    CallPlan::Instance().Fail("IToastNotification::add_Failed", g_hrPlanned);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
    EXPECT_THAT(TestSupport::LogLines("DesktopToast::CreateToast"),
                ElementsAre(L"TraceIn|", L"Verbose|Toast Notifier/Event Handler Activated",
                            L"Verbose|Toast Notifier/Event Handler Dismissed", L"TraceOut|hr: 0x80041234"));
}

TEST_F(DesktopToastFailureTest, Log_ShowFails_NamesAllThreeButNotShown)
{
    CallPlan::Instance().Fail("IToastNotifier::Show", g_hrPlanned);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), g_hrPlanned);
    EXPECT_THAT(TestSupport::LogLines("DesktopToast::CreateToast"),
                ElementsAre(L"TraceIn|", L"Verbose|Toast Notifier/Event Handler Activated",
                            L"Verbose|Toast Notifier/Event Handler Dismissed",
                            L"Verbose|Toast Notifier/Event Handler Failed", L"TraceOut|hr: 0x80041234"));
}

#include "notifications/DesktopToast.h"

#include "platform/ComApartment.h"
#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using testing::ElementsAre;

namespace
{
class DesktopToastTest : public ToastMachine
{
protected:
    DesktopToast m_toast{nullptr, nullptr};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
};

// Without the strings of the Windows Runtime, which are made in between.
std::vector<std::string> WithoutStrings(const std::vector<std::string>& calls)
{
    std::vector<std::string> others;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(others),
                 [](const std::string& call) { return call != "WindowsCreateString"; });
    return others;
}
} // namespace

TEST_F(DesktopToastTest, DisplayToast_Always_ShowsOneToastUnderApplicationId)
{
    EXPECT_EQ(m_toast.DisplayToast(L"Orvik Notifications", L"The adapter is too small."), S_OK);
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["app-id"], "Orvik Notifications");
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"Orvik Notifications", "The adapter is too small.", ""}));
    EXPECT_EQ(m_desktop.VisibleCount(), 1u);
}

TEST_F(DesktopToastTest, DisplayToast_Always_MakesTheseCallsInThisOrder)
{
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_THAT(
        WithoutStrings(Calls()),
        ElementsAre("RoGetActivationFactory", "DllGetActivationFactory", "ToastNotificationManager::QueryInterface",
                    "IToastNotificationManagerStatics::GetTemplateContent",
                    // the image
                    "IXmlDocument::GetElementsByTagName", "IXmlNodeList::Item", "IXmlNode::get_Attributes",
                    "IXmlNamedNodeMap::GetNamedItem", "IXmlDocument::CreateTextNode", "XmlText::QueryInterface",
                    "IXmlNode::AppendChild",
                    // the title and the text
                    "IXmlDocument::GetElementsByTagName", "IXmlNodeList::get_Length", "IXmlNodeList::Item",
                    "IXmlDocument::CreateTextNode", "XmlText::QueryInterface", "IXmlNode::AppendChild",
                    "IXmlNodeList::Item", "IXmlDocument::CreateTextNode", "XmlText::QueryInterface",
                    "IXmlNode::AppendChild",
                    // the toast
                    "IToastNotificationManagerStatics::CreateToastNotifierWithId", "RoGetActivationFactory",
                    "DllGetActivationFactory", "ToastNotificationFactory::QueryInterface",
                    "IToastNotificationFactory::CreateToastNotification", "IToastNotification::add_Activated",
                    "IToastNotification::add_Dismissed", "IToastNotification::add_Failed", "IToastNotifier::Show"));
}

TEST_F(DesktopToastTest, DisplayToast_Always_ActivatesTheTwoClasses)
{
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    std::vector<std::string> classes;
    for (const Simulator::JournalEntry& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "RoGetActivationFactory")
            classes.push_back(entry.m_details["class"]);
    }
    EXPECT_THAT(classes, ElementsAre("Windows.UI.Notifications.ToastNotificationManager",
                                     "Windows.UI.Notifications.ToastNotification"));
}

TEST_F(DesktopToastTest, DisplayToast_Success_WritesTheseRecords)
{
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_THAT(
        TestSupport::LogLines(),
        ElementsAre(
            L"TraceIn|DesktopToast::DisplayToast|", L"TraceIn|DesktopToast::CreateToastXml|",
            L"Verbose|DesktopToast::CreateToastXml|Title: Title", L"Verbose|DesktopToast::CreateToastXml|Text: Text",
            L"TraceIn|DesktopToast::SetImageSrc|", L"TraceIn|DesktopToast::SetNodeValueString|",
            L"TraceOut|DesktopToast::SetNodeValueString|hr: 0x00000000",
            L"TraceOut|DesktopToast::SetImageSrc|hr: 0x00000000", L"TraceIn|DesktopToast::SetTextValues|",
            L"TraceIn|DesktopToast::SetNodeValueString|", L"TraceOut|DesktopToast::SetNodeValueString|hr: 0x00000000",
            L"TraceIn|DesktopToast::SetNodeValueString|", L"TraceOut|DesktopToast::SetNodeValueString|hr: 0x00000000",
            L"TraceOut|DesktopToast::SetTextValues|hr: 0x00000000",
            L"TraceOut|DesktopToast::CreateToastXml|hr: 0x00000000", L"TraceIn|DesktopToast::CreateToast|",
            L"Verbose|DesktopToast::CreateToast|Toast Notifier/Event Handler Activated",
            L"Verbose|DesktopToast::CreateToast|Toast Notifier/Event Handler Dismissed",
            L"Verbose|DesktopToast::CreateToast|Toast Notifier/Event Handler Failed",
            L"Verbose|DesktopToast::CreateToast|Toast Notifier Shown",
            L"TraceOut|DesktopToast::CreateToast|hr: 0x00000000",
            L"TraceOut|DesktopToast::DisplayToast|hr: 0x00000000"));
}

TEST_F(DesktopToastTest, DisplayToast_PercentSignsInTexts_AreLoggedAsTheyStand)
{
    EXPECT_EQ(m_toast.DisplayToast(L"100%s", L"%n%d%p"), S_OK);
    EXPECT_THAT(TestSupport::OperationalLines(),
                testing::IsSupersetOf({L"Verbose|DesktopToast::CreateToastXml|Title: 100%s",
                                       L"Verbose|DesktopToast::CreateToastXml|Text: %n%d%p"}));
}

TEST_F(DesktopToastTest, DisplayToast_Twice_ShowsTwoToasts)
{
    EXPECT_EQ(m_toast.DisplayToast(L"First", L"1"), S_OK);
    EXPECT_EQ(m_toast.DisplayToast(L"Second", L"2"), S_OK);
    ASSERT_EQ(Shown().size(), 2u);
    EXPECT_EQ(Shown()[0]["title"], "First");
    EXPECT_EQ(Shown()[1]["title"], "Second");
    EXPECT_EQ(m_desktop.VisibleCount(), 2u);
}

TEST_F(DesktopToastTest, DisplayToast_ToastClassesMissing_GivesTheirErrorAndNoToast)
{
    Facts::Instance().Set("/toasts/registered", false);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(Shown().empty());
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|DesktopToast::DisplayToast|",
                                                     L"TraceOut|DesktopToast::DisplayToast|hr: 0x80040154"));
}

TEST_F(DesktopToastTest, DisplayToast_FewerThanTwoTextElements_FailsWithoutToast)
{
    for (const unsigned elements : {0u, 1u})
    {
        StartOver();
        Facts::Instance().Set("/toasts/text-elements", elements);
        EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), E_INVALIDARG) << elements;
        EXPECT_TRUE(Shown().empty()) << elements;
        EXPECT_TRUE(
            TestSupport::Logged(Orvik::Shared::Level::TraceOut, "DesktopToast::DisplayToast", L"hr: 0x80070057"));
    }
}

TEST_F(DesktopToastTest, DisplayToast_ExactlyTwoTextElements_ShowsToast)
{
    Facts::Instance().Set("/toasts/text-elements", 2u);
    EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), S_OK);
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"Title", "Text"}));
}

TEST_F(DesktopToastTest, CreateToast_OwnDocument_ShowsItAsItStands)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastAbi::ToastTemplateType::ToastText01);
    EXPECT_EQ(m_toast.CreateToast(Manager(), spDocument), S_OK);
    EXPECT_EQ(ShownXml(), L"<toast><visual><binding template=\"ToastText01\"><text id=\"1\"></text></binding></visual>"
                          L"</toast>");
}

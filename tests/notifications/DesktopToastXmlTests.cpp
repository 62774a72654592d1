#include "notifications/DesktopToast.h"

#include "platform/ComApartment.h"
#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

#include <array>

using Simulator::CallPlan;
using ToastAbi::ToastTemplateType;

namespace
{
class DesktopToastXmlTest : public ToastMachine
{
protected:
    DesktopToast m_toast{nullptr, nullptr};
    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
};

// The whole document of a toast, given its two texts as XML has them.
std::wstring Xml(const std::wstring& title, const std::wstring& text)
{
    return L"<toast><visual><binding template=\"ToastImageAndText04\">"
           L"<image id=\"1\" src=\"file:///C:\\Program Files (x86)\\Orvik\\Orvik Notifications\\"
           L"toastImageAndText.png\"/>"
           L"<text id=\"1\">" +
           title + L"</text><text id=\"2\">" + text + L"</text><text id=\"3\"></text></binding></visual></toast>";
}
} // namespace

TEST_F(DesktopToastXmlTest, Document_PlainTexts_IsExactlyThis)
{
    EXPECT_EQ(m_toast.DisplayToast(L"Orvik Notifications", L"The Smart AC Adapter is not functioning correctly."),
              S_OK);
    EXPECT_EQ(ShownXml(), Xml(L"Orvik Notifications", L"The Smart AC Adapter is not functioning correctly."));
}

TEST_F(DesktopToastXmlTest, Document_MarkupInTexts_IsText)
{
    EXPECT_EQ(m_toast.DisplayToast(L"<text>&amp;</text>", L"a < b && c > d \"quoted\" 'single' ]]> <!-- -->"), S_OK);
    EXPECT_EQ(ShownXml(), Xml(L"&lt;text&gt;&amp;amp;&lt;/text&gt;",
                              L"a &lt; b &amp;&amp; c &gt; d \"quoted\" 'single' ]]&gt; &lt;!-- --&gt;"));
    EXPECT_EQ(Shown()[0]["texts"][0], "<text>&amp;</text>");
    EXPECT_EQ(Shown()[0]["texts"][1], "a < b && c > d \"quoted\" 'single' ]]> <!-- -->");
}

TEST_F(DesktopToastXmlTest, Document_Unicode_IsKept)
{
    const std::wstring title = L"\x00C4\x00DF \x6E29\x5EA6 \xAC00";
    const std::wstring text = L"\xD83D\xDD0B \x0627\x0644 \x200F.";
    EXPECT_EQ(m_toast.DisplayToast(title, text), S_OK);
    EXPECT_EQ(ShownXml(), Xml(title, text));
}

TEST_F(DesktopToastXmlTest, Document_EmptyTexts_HaveEmptyElements)
{
    EXPECT_EQ(m_toast.DisplayToast(L"", L""), S_OK);
    EXPECT_EQ(ShownXml(), Xml(L"", L""));
}

TEST_F(DesktopToastXmlTest, Document_BlanksAndLineBreaks_AreKept)
{
    EXPECT_EQ(m_toast.DisplayToast(L"  two blanks  ", L"line\nline\ttab"), S_OK);
    EXPECT_EQ(ShownXml(), Xml(L"  two blanks  ", L"line\nline\ttab"));
}

TEST_F(DesktopToastXmlTest, Document_TenThousandCharacters_AreAllThere)
{
    const std::wstring title(10'000, L't');
    const std::wstring text(10'000, L'x');
    EXPECT_EQ(m_toast.DisplayToast(title, text), S_OK);
    EXPECT_EQ(ShownXml(), Xml(title, text));
}

TEST_F(DesktopToastXmlTest, Log_TenThousandCharacters_IsCutAtTheRecordsCapacity)
{
    EXPECT_EQ(m_toast.DisplayToast(std::wstring(10'000, L't'), std::wstring(10'000, L'x')), S_OK);
    EXPECT_THAT(
        TestSupport::LogRecords(),
        testing::IsSupersetOf({TestSupport::IsRecord(Orvik::Shared::Level::Verbose, "DesktopToast::CreateToastXml",
                                                     testing::Eq(L"Title: " + std::wstring(504, L't'))),
                               TestSupport::IsRecord(Orvik::Shared::Level::Verbose, "DesktopToast::CreateToastXml",
                                                     testing::Eq(L"Text: " + std::wstring(505, L'x')))}));
}

TEST_F(DesktopToastXmlTest, CreateToastXml_TemplateFails_LogsNoTexts)
{
    const ToastAbi::IToastNotificationManagerStaticsPtr spManager = Manager();
    CallPlan::Instance().Fail("IToastNotificationManagerStatics::GetTemplateContent", E_OUTOFMEMORY);
    ToastAbi::IXmlDocumentPtr spDocument;
    EXPECT_EQ(m_toast.CreateToastXml(spManager, spDocument, L"Title", L"Text"), E_OUTOFMEMORY);
    EXPECT_FALSE(spDocument);
    EXPECT_TRUE(TestSupport::OperationalLines().empty());
}

TEST_F(DesktopToastXmlTest, SetTextValues_OneValueForEachElement_FillsAll)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastImageAndText04);
    EXPECT_EQ(m_toast.SetTextValues(std::array<std::wstring, 3>{L"a", L"b", L"c"}, spDocument), S_OK);
    EXPECT_EQ(m_toast.CreateToast(Manager(), spDocument), S_OK);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"a", "b", "c"}));
}

TEST_F(DesktopToastXmlTest, SetTextValues_MoreValuesThanElements_Fails)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastText02);
    EXPECT_EQ(m_toast.SetTextValues(std::array<std::wstring, 3>{L"a", L"b", L"c"}, spDocument), E_INVALIDARG);
}

TEST_F(DesktopToastXmlTest, SetTextValues_NoValues_ChangesNothing)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastText02);
    EXPECT_EQ(m_toast.SetTextValues({}, spDocument), S_OK);
    EXPECT_EQ(m_toast.CreateToast(Manager(), spDocument), S_OK);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"", ""}));
}

TEST_F(DesktopToastXmlTest, SetTextValues_OneElement_FailsEvenForOneValue)
{
    const ToastAbi::IXmlDocumentPtr spDocument = Document(ToastTemplateType::ToastText01);
    EXPECT_EQ(m_toast.SetTextValues(std::array<std::wstring, 1>{L"a"}, spDocument), E_INVALIDARG);
    EXPECT_THAT(TestSupport::LogLines("DesktopToast::SetTextValues"),
                testing::ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x80070057"));
}

#include "tests/simulator/toasts/ToastsTest.h"

using Simulator::Facts;
using ToastAbi::ToastTemplateType;

namespace
{
class ToastTemplateTest : public ToastsTest
{
protected:
    static std::wstring Template(ToastTemplateType type) { return Xml(Document(type)); }
    static std::wstring Toast(const std::wstring& binding)
    {
        return L"<toast><visual>" + binding + L"</visual></toast>";
    }
};

constexpr wchar_t g_image[] = L"<image id=\"1\" src=\"\"/>";
constexpr wchar_t g_text1[] = L"<text id=\"1\"></text>";
constexpr wchar_t g_text2[] = L"<text id=\"2\"></text>";
constexpr wchar_t g_text3[] = L"<text id=\"3\"></text>";

std::wstring Binding(const wchar_t* name, const std::wstring& content)
{
    return std::wstring(L"<binding template=\"") + name + L"\">" + content + L"</binding>";
}
} // namespace

TEST_F(ToastTemplateTest, GetTemplateContent_ImageTypes_HaveOneImageAndTheirTexts)
{
    const std::wstring image = g_image;
    EXPECT_EQ(Template(ToastTemplateType::ToastImageAndText01),
              Toast(Binding(L"ToastImageAndText01", image + g_text1)));
    EXPECT_EQ(Template(ToastTemplateType::ToastImageAndText02),
              Toast(Binding(L"ToastImageAndText02", image + g_text1 + g_text2)));
    EXPECT_EQ(Template(ToastTemplateType::ToastImageAndText03),
              Toast(Binding(L"ToastImageAndText03", image + g_text1 + g_text2)));
    EXPECT_EQ(Template(ToastTemplateType::ToastImageAndText04),
              Toast(Binding(L"ToastImageAndText04", image + g_text1 + g_text2 + g_text3)));
}

TEST_F(ToastTemplateTest, GetTemplateContent_TextTypes_HaveTheirTextsOnly)
{
    const std::wstring first = g_text1;
    EXPECT_EQ(Template(ToastTemplateType::ToastText01), Toast(Binding(L"ToastText01", first)));
    EXPECT_EQ(Template(ToastTemplateType::ToastText02), Toast(Binding(L"ToastText02", first + g_text2)));
    EXPECT_EQ(Template(ToastTemplateType::ToastText03), Toast(Binding(L"ToastText03", first + g_text2)));
    EXPECT_EQ(Template(ToastTemplateType::ToastText04), Toast(Binding(L"ToastText04", first + g_text2 + g_text3)));
}

TEST_F(ToastTemplateTest, GetTemplateContent_UnknownType_IsRefused)
{
    for (const int type : {-1, 8, 1000})
    {
        // Not null before, to see it cleared.
        IUnknown* const rubbish = reinterpret_cast<IUnknown*>(this);
        auto* document = reinterpret_cast<ToastAbi::IXmlDocument*>(rubbish);
        EXPECT_EQ(Manager()->GetTemplateContent(static_cast<ToastTemplateType>(type), &document), E_INVALIDARG);
        EXPECT_EQ(document, nullptr);
    }
}

TEST_F(ToastTemplateTest, GetTemplateContent_EachCall_GivesAnotherDocument)
{
    const ToastAbi::IXmlDocumentPtr first = Document(ToastTemplateType::ToastText01);
    const ToastAbi::IXmlDocumentPtr second = Document(ToastTemplateType::ToastText01);
    AppendText(first, Element(first, L"text"), L"changed");
    EXPECT_EQ(Xml(second), Toast(Binding(L"ToastText01", g_text1)));
}

TEST_F(ToastTemplateTest, TextElementsFact_OverridesTheirNumber)
{
    Facts::Instance().Set("/toasts/text-elements", 1);
    EXPECT_EQ(Template(ToastTemplateType::ToastImageAndText04),
              Toast(Binding(L"ToastImageAndText04", std::wstring(g_image) + g_text1)));
    Facts::Instance().Set("/toasts/text-elements", 0);
    EXPECT_EQ(Template(ToastTemplateType::ToastText04), Toast(L"<binding template=\"ToastText04\"/>"));
}

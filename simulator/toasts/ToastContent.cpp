#include "simulator/toasts/ToastContent.h"

#include "simulator/model/Facts.h"
#include "simulator/model/Text.h"
#include "simulator/toasts/XmlWriter.h"

#include <array>

namespace Simulator
{
namespace
{
struct Template
{
    const wchar_t* m_pName;
    bool m_bImage;
    int m_nTexts;
};

// From the toast template catalogue of Windows.
constexpr std::array g_templates = {
    Template{L"ToastImageAndText01", true, 1}, Template{L"ToastImageAndText02", true, 2},
    Template{L"ToastImageAndText03", true, 2}, Template{L"ToastImageAndText04", true, 3},
    Template{L"ToastText01", false, 1},        Template{L"ToastText02", false, 2},
    Template{L"ToastText03", false, 2},        Template{L"ToastText04", false, 3},
};

// A tree that nobody else knows yet accepts everything that belongs into a template.
XmlNode& AddElement(XmlTree& tree, XmlNode& parent, const wchar_t* name)
{
    XmlNode& element = tree.CreateElement(name);
    static_cast<void>(tree.Insert(parent, element));
    return element;
}

void AddAttribute(XmlTree& tree, XmlNode& element, const wchar_t* name, std::wstring_view value)
{
    XmlNode* previous = nullptr;
    static_cast<void>(tree.SetAttribute(element, tree.CreateAttribute(name, value), &previous));
}
} // namespace

nlohmann::json ToastContent::Describe() const
{
    nlohmann::json texts = nlohmann::json::array();
    for (const std::wstring& text : m_lstTexts)
        texts.push_back(Narrow(text));
    return {{"app-id", Narrow(m_strApplicationId)},
            {"title", Narrow(Title())},
            {"texts", std::move(texts)},
            {"image", Narrow(m_strImageSource)},
            {"xml", Narrow(m_strXml)}};
}

ToastContent ReadToastContent(XmlTree& tree, std::wstring_view applicationId)
{
    const std::lock_guard lock(tree.Lock());
    ToastContent content;
    content.m_strApplicationId = applicationId;
    for (const XmlNode* text : tree.Document().Elements(L"text"))
        content.m_lstTexts.push_back(text->Text());
    for (const XmlNode* image : tree.Document().Elements(L"image"))
    {
        const XmlNode* source = image->Attribute(L"src");
        if (source != nullptr && content.m_strImageSource.empty())
            content.m_strImageSource = source->Text();
    }
    content.m_strXml = WriteXml(tree.Document());
    return content;
}

std::shared_ptr<XmlTree> MakeTemplate(INT32 templateType)
{
    if (templateType < 0 || templateType >= std::ssize(g_templates))
        return nullptr;
    const Template& source = g_templates[static_cast<std::size_t>(templateType)];
    const nlohmann::json override = Facts::Instance().Get("/toasts/text-elements");
    const int texts = override.is_number_integer() ? override.get<int>() : source.m_nTexts;

    auto tree = std::make_shared<XmlTree>();
    XmlNode& toast = AddElement(*tree, tree->Document(), L"toast");
    XmlNode& binding = AddElement(*tree, AddElement(*tree, toast, L"visual"), L"binding");
    AddAttribute(*tree, binding, L"template", source.m_pName);
    if (source.m_bImage)
    {
        XmlNode& image = AddElement(*tree, binding, L"image");
        AddAttribute(*tree, image, L"id", L"1");
        AddAttribute(*tree, image, L"src", L"");
    }
    for (int i = 1; i <= texts; ++i)
    {
        XmlNode& text = AddElement(*tree, binding, L"text");
        AddAttribute(*tree, text, L"id", std::to_wstring(i));
        text.m_bEndTag = true;
    }
    return tree;
}
} // namespace Simulator

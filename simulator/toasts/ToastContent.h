#pragma once

#include "simulator/toasts/XmlTree.h"

#include <nlohmann/json.hpp>

namespace Simulator
{
// What a toast says, read out of its document when it is shown.
struct ToastContent
{
    std::wstring m_strApplicationId;
    std::vector<std::wstring> m_lstTexts; // every text element in document order; the first is the title
    std::wstring m_strImageSource;        // the src of the first image, as it stands
    std::wstring m_strXml;

    [[nodiscard]] std::wstring Title() const { return m_lstTexts.empty() ? std::wstring() : m_lstTexts.front(); }
    // For the journal: "app-id", "title", "texts", "image", "xml".
    [[nodiscard]] nlohmann::json Describe() const;
};

// Takes the tree's lock.
[[nodiscard]] ToastContent ReadToastContent(XmlTree& tree, std::wstring_view applicationId);

// The document of a toast template type (0 to 7) with empty texts and image source; null for another type. The fact
// /toasts/text-elements overrides the number of text elements.
[[nodiscard]] std::shared_ptr<XmlTree> MakeTemplate(INT32 templateType);
} // namespace Simulator

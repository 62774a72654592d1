#include "notifications/DesktopToast.h"
#include "notifications/WindowsRuntime.h"
#include "platform/OutOfMemoryResult.h"
#include "platform/RequireObject.h"
#include "shared/TraceScope.h"

#include <shlobj.h>

#include <array>

using namespace ToastAbi;
using Orvik::Shared::TraceScope;

namespace
{
constexpr UINT32 LeastTextElements = 2;

HRESULT FindElements(IXmlDocument* document, const wchar_t* tagName, IXmlNodeListPtr& spElements)
{
    WindowsRuntime::RuntimeString name;
    const HRESULT hr = name.Create(tagName);
    return FAILED(hr) ? hr : RequireObject(document->GetElementsByTagName(name.Get(), &spElements), spElements);
}

// Lists and maps answer S_OK and null for a node that is not there.
HRESULT ItemOf(IXmlNodeList* list, UINT32 index, IXmlNodePtr& spNode)
{
    const HRESULT hr = list->Item(index, &spNode);
    return SUCCEEDED(hr) && !spNode ? E_INVALIDARG : hr;
}

HRESULT ItemOf(IXmlNamedNodeMap* map, const wchar_t* name, IXmlNodePtr& spNode)
{
    WindowsRuntime::RuntimeString runtimeName;
    HRESULT hr = runtimeName.Create(name);
    if (SUCCEEDED(hr))
        hr = map->GetNamedItem(runtimeName.Get(), &spNode);
    return SUCCEEDED(hr) && !spNode ? E_INVALIDARG : hr;
}

HRESULT FindSrcOfFirstImage(IXmlDocument* document, IXmlNodePtr& spSrc)
{
    IXmlNodeListPtr spImages;
    HRESULT hr = FindElements(document, L"image", spImages);
    IXmlNodePtr spImage;
    if (SUCCEEDED(hr))
        hr = ItemOf(spImages, 0, spImage);
    IXmlNamedNodeMapPtr spAttributes;
    if (SUCCEEDED(hr))
        hr = RequireObject(spImage->get_Attributes(&spAttributes), spAttributes);
    return SUCCEEDED(hr) ? ItemOf(spAttributes, L"src", spSrc) : hr;
}

// The folder is fixed: the image lies where the set-up program puts it, whatever folder the agent runs from.
HRESULT ToastImagePath(std::wstring& path)
{
    wchar_t folder[MAX_PATH] = L"";
    if (!SHGetSpecialFolderPathW(nullptr, folder, CSIDL_PROGRAM_FILESX86, FALSE))
        return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    path = std::wstring(folder) + L"\\Orvik\\Orvik Notifications\\toastImageAndText.png";
    return path.size() < MAX_PATH ? S_OK : HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
}
} // namespace

HRESULT DesktopToast::CreateToastXml(IToastNotificationManagerStatics* manager, IXmlDocumentPtr& spDocument,
                                     const std::wstring& title, const std::wstring& text)
{
    TraceScope trace(ORVIK_FUNCTION);
    HRESULT hr =
        RequireObject(manager->GetTemplateContent(ToastTemplateType::ToastImageAndText04, &spDocument), spDocument);
    if (FAILED(hr))
        return trace.Exit(hr);
    trace.Verbose(L"Title: %s", title.c_str());
    trace.Verbose(L"Text: %s", text.c_str());

    return trace.Exit(OutOfMemoryResult(
        [&]
        {
            std::wstring imagePath;
            hr = ToastImagePath(imagePath);
            if (SUCCEEDED(hr))
                hr = SetImageSrc(imagePath, spDocument);
            if (SUCCEEDED(hr))
                hr = SetTextValues(std::array{title, text}, spDocument);
            return hr;
        }));
}

HRESULT DesktopToast::SetImageSrc(const std::wstring& imagePath, IXmlDocument* document)
{
    TraceScope trace(ORVIK_FUNCTION);
    IXmlNodePtr spSrc;
    HRESULT hr = FindSrcOfFirstImage(document, spSrc);
    if (SUCCEEDED(hr))
        hr = OutOfMemoryResult([&] { return SetNodeValueString(L"file:///" + imagePath, spSrc, document); });
    return trace.Exit(hr);
}

HRESULT DesktopToast::SetTextValues(std::span<const std::wstring> values, IXmlDocument* document)
{
    TraceScope trace(ORVIK_FUNCTION);
    IXmlNodeListPtr spElements;
    UINT32 count = 0;
    HRESULT hr = FindElements(document, L"text", spElements);
    if (SUCCEEDED(hr))
        hr = spElements->get_Length(&count);
    if (SUCCEEDED(hr) && count < LeastTextElements)
        hr = E_INVALIDARG;
    for (UINT32 i = 0; i < values.size() && SUCCEEDED(hr); ++i)
    {
        IXmlNodePtr spElement;
        hr = ItemOf(spElements, i, spElement);
        if (SUCCEEDED(hr))
            hr = SetNodeValueString(values[i], spElement, document);
    }
    return trace.Exit(hr);
}

HRESULT DesktopToast::SetNodeValueString(const std::wstring& value, IXmlNode* node, IXmlDocument* document)
{
    TraceScope trace(ORVIK_FUNCTION);
    WindowsRuntime::RuntimeString data;
    HRESULT hr = data.Create(value);
    IXmlTextPtr spText;
    if (SUCCEEDED(hr))
        hr = RequireObject(document->CreateTextNode(data.Get(), &spText), spText);
    IXmlNodePtr spTextNode;
    if (SUCCEEDED(hr))
        hr = RequireObject(spText->QueryInterface(__uuidof(IXmlNode), reinterpret_cast<void**>(&spTextNode)),
                           spTextNode);
    IXmlNodePtr spAppended;
    if (SUCCEEDED(hr))
        hr = node->AppendChild(spTextNode, &spAppended);
    return trace.Exit(hr);
}

#include "tests/auditlog/XmlCalls.h"

#include "platform/XmlDocument.h"
#include "simulator/model/CallPlan.h"

#include <atomic>
#include <type_traits>

using Simulator::CallPlan;

namespace Tests
{
namespace
{
template <class Interface, class Out>
using Getter = HRESULT STDMETHODCALLTYPE(Interface*, Out*);

Getter<IXMLDOMDocument, IXMLDOMElement*>* g_pfnDocumentElement = nullptr;
Getter<IXMLDOMNode, IXMLDOMNodeList*>* g_pfnChildNodes = nullptr;
Getter<IXMLDOMNode, BSTR>* g_pfnNodeName = nullptr;
Getter<IXMLDOMNode, DOMNodeType>* g_pfnNodeType = nullptr;
Getter<IXMLDOMNode, BSTR>* g_pfnText = nullptr;
Getter<IXMLDOMNodeList, long>* g_pfnLength = nullptr;
HRESULT(STDMETHODCALLTYPE* g_pfnItem)(IXMLDOMNodeList*, long, IXMLDOMNode**) = nullptr;
ULONG(STDMETHODCALLTYPE* g_pfnElementAddRef)(IUnknown*) = nullptr;
ULONG(STDMETHODCALLTYPE* g_pfnElementRelease)(IUnknown*) = nullptr;
ULONG(STDMETHODCALLTYPE* g_pfnListAddRef)(IUnknown*) = nullptr;
ULONG(STDMETHODCALLTYPE* g_pfnListRelease)(IUnknown*) = nullptr;
std::atomic<long> g_nReferences = 0;

template <auto& Real, long Step>
ULONG STDMETHODCALLTYPE Counted(IUnknown* object)
{
    g_nReferences += Step;
    return Real(object);
}

// The reference that a call gives with a new object, when the object is of a class that is watched.
void CountGiven(IUnknown* object)
{
    void* const release = (*reinterpret_cast<void***>(object))[SlotOf(&IUnknown::Release)];
    if (release == reinterpret_cast<void*>(&Counted<g_pfnElementRelease, -1>) ||
        release == reinterpret_cast<void*>(&Counted<g_pfnListRelease, -1>))
        ++g_nReferences;
}

// The call as the plan has it.
template <class Out, class Call>
HRESULT Planned(const char* name, Out* result, Call call)
{
    HRESULT hr = CallPlan::Instance().Enter(name);
    if (hr != S_OK)
    {
        *result = Out{};
        return hr;
    }
    hr = call();
    if constexpr (std::is_convertible_v<Out, IUnknown*>)
    {
        if (hr == S_OK)
            CountGiven(*result);
    }
    return hr;
}

HRESULT STDMETHODCALLTYPE DocumentElement(IXMLDOMDocument* document, IXMLDOMElement** element)
{
    return Planned("get_documentElement", element, [=] { return g_pfnDocumentElement(document, element); });
}

HRESULT STDMETHODCALLTYPE ChildNodes(IXMLDOMNode* node, IXMLDOMNodeList** list)
{
    return Planned("get_childNodes", list, [=] { return g_pfnChildNodes(node, list); });
}

HRESULT STDMETHODCALLTYPE NodeName(IXMLDOMNode* node, BSTR* name)
{
    return Planned("get_nodeName", name, [=] { return g_pfnNodeName(node, name); });
}

HRESULT STDMETHODCALLTYPE NodeType(IXMLDOMNode* node, DOMNodeType* type)
{
    return Planned("get_nodeType", type, [=] { return g_pfnNodeType(node, type); });
}

HRESULT STDMETHODCALLTYPE NodeText(IXMLDOMNode* node, BSTR* text)
{
    return Planned("get_text", text, [=] { return g_pfnText(node, text); });
}

HRESULT STDMETHODCALLTYPE Length(IXMLDOMNodeList* list, long* length)
{
    return Planned("get_length", length, [=] { return g_pfnLength(list, length); });
}

HRESULT STDMETHODCALLTYPE Item(IXMLDOMNodeList* list, long index, IXMLDOMNode** item)
{
    return Planned("get_item", item, [=] { return g_pfnItem(list, index, item); });
}
} // namespace

XmlCalls::XmlCalls()
{
    XmlDocument sample;
    static_cast<void>(sample.Load(MakeBstr(L"<a/>").get()));
    IXMLDOMDocument* const document = sample.GetDocument();
    IXMLDOMElementPtr spElement;
    static_cast<void>(document->get_documentElement(&spElement));
    IXMLDOMNodeListPtr spList;
    static_cast<void>(spElement->get_childNodes(&spList));
    IXMLDOMElement* const element = spElement;
    IXMLDOMNodeList* const list = spList;
    const auto redirect = [this](auto* object, auto method, auto* replacement, auto& real)
    {
        real = m_lstMethods.emplace_back(object, method, replacement)
                   .template Original<std::remove_pointer_t<std::remove_reference_t<decltype(real)>>>();
    };
    redirect(document, &IXMLDOMDocument::get_documentElement, &DocumentElement, g_pfnDocumentElement);
    redirect(element, &IXMLDOMNode::get_childNodes, &ChildNodes, g_pfnChildNodes);
    redirect(element, &IXMLDOMNode::get_nodeName, &NodeName, g_pfnNodeName);
    redirect(element, &IXMLDOMNode::get_nodeType, &NodeType, g_pfnNodeType);
    redirect(element, &IXMLDOMNode::get_text, &NodeText, g_pfnText);
    redirect(list, &IXMLDOMNodeList::get_length, &Length, g_pfnLength);
    redirect(list, &IXMLDOMNodeList::get_item, &Item, g_pfnItem);
    g_nReferences = 0;
    redirect(element, &IUnknown::AddRef, &Counted<g_pfnElementAddRef, 1>, g_pfnElementAddRef);
    redirect(element, &IUnknown::Release, &Counted<g_pfnElementRelease, -1>, g_pfnElementRelease);
    redirect(list, &IUnknown::AddRef, &Counted<g_pfnListAddRef, 1>, g_pfnListAddRef);
    redirect(list, &IUnknown::Release, &Counted<g_pfnListRelease, -1>, g_pfnListRelease);
    // What the sample holds is given back before anybody asks.
    g_nReferences += 2;
}

XmlCalls::~XmlCalls()
{
    // In reverse order of making.
    while (!m_lstMethods.empty())
        m_lstMethods.pop_back();
}

long XmlCalls::LiveReferences()
{
    return g_nReferences;
}
} // namespace Tests

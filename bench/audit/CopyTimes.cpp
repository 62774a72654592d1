#include "bench/audit/CopyTimes.h"

#include "bench/support/Crossings.h"
#include "platform/UniqueBstr.h"
#include "platform/XmlDocument.h"
#include "wmievents/AuditLogCopy.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

using namespace EventBench;
using Notifications::OrvikWmiEvents::AddLogsToEventViewer;

namespace
{
constexpr int g_rounds = 9;

void Require(HRESULT hr)
{
    if (FAILED(hr))
        throw std::runtime_error("a call to MSXML failed");
}

// Each log has timestamps of its own: what one copy has written, another one knows.
std::wstring AuditLog(int entries)
{
    static int number = 0;
    const std::wstring day = std::to_wstring(++number);
    std::wstring text = L"<AuditLog>";
    for (int i = 0; i < entries; ++i)
    {
        text += L"<Entry><timestamp>" + day + L"/05/01 " + std::to_wstring(i) +
                L"</timestamp><source>Orvik Veritor</source><event_id>" + std::to_wstring(i % 40) +
                L"</event_id><description>The system firmware was recovered.</description>"
                L"<logtype>WARN</logtype></Entry>";
    }
    return text + L"</AuditLog>";
}

template <class Pointer, class Get>
Pointer Got(Get get)
{
    Pointer spObject;
    Require(get(&spObject));
    return spObject;
}

// The methods of MSXML's objects through which a copy walks: the root, the lists, the entries and fields.
void WatchDocument()
{
    XmlDocument xml;
    Require(xml.Load(MakeBstr(L"<a><b/></a>").get()));
    const auto spRoot =
        Got<IXMLDOMElementPtr>([&xml](IXMLDOMElement** root) { return xml.GetDocument()->get_documentElement(root); });
    const auto spList =
        Got<IXMLDOMNodeListPtr>([&spRoot](IXMLDOMNodeList** list) { return spRoot->get_childNodes(list); });
    const auto spNode = Got<IXMLDOMNodePtr>([&spList](IXMLDOMNode** node) { return spList->get_item(0, node); });
    WatchMethods<"lists", InWindows, &IXMLDOMNodeList::get_length, &IXMLDOMNodeList::get_item>(
        spList.GetInterfacePtr());
    WatchMethods<"nodes", InWindows, &IXMLDOMNode::get_childNodes, &IXMLDOMNode::get_nodeName,
                 &IXMLDOMNode::get_nodeType, &IXMLDOMNode::get_text>(spNode.GetInterfacePtr());
}

struct Copy
{
    double m_component;
    double m_agent;
};

Copy MeasureCopy(const XmlDocument& xml)
{
    EventClock::Start();
    AddLogsToEventViewer(xml);
    EventClock::Finish();
    const double scale = EventClock::MicrosecondsPerTick() / 1000;
    const EventCost& cost = EventClock::Cost();
    return {static_cast<double>(cost.TicksOf(Place::Windows)) * scale,
            static_cast<double>(cost.TicksOf(Place::Agent)) * scale};
}

double Median(std::vector<double>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
} // namespace

CopyTimes::Figures CopyTimes::Measure(int entries)
{
    [[maybe_unused]] static const bool isWatched = (WatchDocument(), true);
    std::vector<double> component;
    std::vector<double> known;
    std::vector<double> added;
    for (int round = 0; round < g_rounds; ++round)
    {
        XmlDocument xml;
        Require(xml.Load(MakeBstr(AuditLog(entries).c_str()).get()));
        // Only the first copy of a log meets new entries.
        const Copy first = MeasureCopy(xml);
        const Copy second = MeasureCopy(xml);
        component.push_back(second.m_component);
        known.push_back(second.m_agent);
        added.push_back(first.m_agent);
    }
    return {Median(component), Median(known), Median(added)};
}

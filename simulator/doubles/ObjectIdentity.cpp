#include "simulator/doubles/ObjectIdentity.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"

#include <objbase.h>

#include <algorithm>
#include <ranges>

namespace Simulator
{
namespace
{
std::atomic<bool> g_journalsReferences = true;
std::atomic<unsigned> g_lastObject = 0;

void JournalReference(const std::string& subject, nlohmann::json details)
{
    if (g_journalsReferences)
        Journal::Instance().Append("reference", subject, std::move(details));
}
} // namespace

ObjectIdentity::ObjectIdentity(std::string_view className, IUnknown* outer)
    : m_strClassName(className), m_alive(className), m_nObject(++g_lastObject)
{
    // Only a lack of memory makes this fail; the double then cannot leave its apartment, which shows.
    if (FAILED(CoCreateFreeThreadedMarshaler(outer, &m_pMarshaler)))
        m_pMarshaler = nullptr;
}

ObjectIdentity::~ObjectIdentity()
{
    if (m_pMarshaler != nullptr)
        m_pMarshaler->Release();
}

ULONG ObjectIdentity::AddRef()
{
    const ULONG count = ++m_nReferences;
    JournalReference(m_strClassName + "::AddRef", {{"object", m_nObject}, {"count", count}});
    return count;
}

ULONG ObjectIdentity::Release(nlohmann::json details)
{
    // Taken first: another thread may end the object as soon as the count is lowered.
    const std::string subject = m_strClassName + "::Release";
    const unsigned object = m_nObject;
    const ULONG count = --m_nReferences;
    details["object"] = object;
    details["count"] = count;
    JournalReference(subject, std::move(details));
    return count;
}

HRESULT ObjectIdentity::EnterQuery(REFIID iid)
{
    return CallPlan::Instance().Enter(m_strClassName + "::QueryInterface",
                                      {{"iid", GuidText(iid)}, {"object", m_nObject}}, "com");
}

HRESULT ObjectIdentity::Marshaler(REFIID iid, void** object)
{
    return m_pMarshaler != nullptr ? m_pMarshaler->QueryInterface(iid, object) : E_NOINTERFACE;
}

void ObjectIdentity::JournalReferences(bool wanted)
{
    g_journalsReferences = wanted;
}

std::vector<std::string> OrderOfLastReleases(const std::vector<std::string>& classNames)
{
    const std::vector<std::string> subjects = Journal::Instance().Subjects("reference");
    std::vector<std::string> order;
    for (const auto& subject : std::ranges::reverse_view(subjects))
    {
        const auto name = std::ranges::find_if(classNames, [&](const std::string& candidate)
                                               { return candidate + "::Release" == subject; });
        if (name != classNames.end() && std::ranges::find(order, *name) == order.end())
            order.push_back(*name);
    }
    std::ranges::reverse(order);
    return order;
}
} // namespace Simulator

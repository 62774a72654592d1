#include "simulator/doubles/WbemServicesDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/WmiDelivery.h"
#include "simulator/doubles/WmiInstances.h"
#include "simulator/doubles/WmiStatus.h"
#include "simulator/doubles/WmiSubscriptions.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <algorithm>

namespace Simulator
{
namespace
{
nlohmann::json QueryDetails(const OLECHAR* language, const OLECHAR* query, LONG flags, const IWbemContext* context)
{
    return {{"language", NarrowBstr(language)},
            {"query", NarrowBstr(query)},
            {"flags", flags},
            {"context", context != nullptr},
            {"apartment", ApartmentText()}};
}

// The query, or why WMI refuses it.
HRESULT ReadQuery(const OLECHAR* language, const OLECHAR* text, WmiQuery& query)
{
    if (language == nullptr || text == nullptr)
        return Status(WBEM_E_INVALID_PARAMETER);
    if (!EqualNames(NarrowBstr(language), "WQL"))
        return Status(WBEM_E_INVALID_QUERY_TYPE);
    std::optional<WmiQuery> read = WmiQuery::Parse(NarrowBstr(text));
    if (!read)
        return Status(WBEM_E_INVALID_QUERY);
    query = std::move(*read);
    return Status(WBEM_S_NO_ERROR);
}

// Null for a query that names no event number.
nlohmann::json EventIdOf(const WmiQuery& query)
{
    return query.m_nEventId ? nlohmann::json(*query.m_nEventId) : nlohmann::json();
}

bool IsEventClass(std::string_view name)
{
    const nlohmann::json fact = Facts::Instance().Get("/wmi/event-classes");
    return !fact.is_array() ||
           std::ranges::any_of(fact, [&](const nlohmann::json& entry)
                               { return entry.is_string() && EqualNames(entry.get<std::string>(), name); });
}
} // namespace

WbemServicesDouble::WbemServicesDouble(std::string normalNamespace)
    : WbemServicesBase("WbemServices"), m_strNamespace(std::move(normalNamespace))
{
}

WbemServicesDouble::~WbemServicesDouble()
{
    for (const WmiSubscription& lost : WmiSubscriptions::Instance().Remove(this, nullptr))
        Journal::Instance().Append("wmi", "lost", {{"namespace", m_strNamespace}, {"class", lost.m_query.m_strClass}});
}

HRESULT WbemServicesDouble::CancelAsyncCall(IWbemObjectSink* sink)
{
    if (const HRESULT hr = CallPlan::Instance().Enter("IWbemServices::CancelAsyncCall"); FAILED(hr))
        return hr;
    if (sink == nullptr)
        return Status(WBEM_E_INVALID_PARAMETER);
    std::vector<WmiSubscription> cancelled = WmiSubscriptions::Instance().Remove(this, sink);
    if (cancelled.empty())
        return Status(WBEM_E_NOT_FOUND);
    for (WmiSubscription& subscription : cancelled)
    {
        Journal::Instance().Append("wmi", "cancelled",
                                   {{"namespace", m_strNamespace},
                                    {"class", subscription.m_query.m_strClass},
                                    {"event-id", EventIdOf(subscription.m_query)}});
        TellCancelled(std::move(subscription.m_spSink));
    }
    return Status(WBEM_S_NO_ERROR);
}

HRESULT WbemServicesDouble::ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                                      IEnumWbemClassObject** objects)
{
    HRESULT hr = CallPlan::Instance().Enter("IWbemServices::ExecQuery", QueryDetails(language, query, flags, context));
    if (objects == nullptr)
        return FirstFailure(hr, Status(WBEM_E_INVALID_PARAMETER));
    *objects = nullptr;
    if (FAILED(hr))
        return hr;
    WmiQuery parsed;
    hr = ReadQuery(language, query, parsed);
    if (FAILED(hr))
        return hr;
    auto instances = InstancesOf(m_strNamespace, parsed);
    if (!instances)
        return Status(WBEM_E_INVALID_CLASS);
    *objects = new EnumWbemClassObjectDouble(std::move(*instances));
    return Status(WBEM_S_NO_ERROR);
}

HRESULT WbemServicesDouble::ExecNotificationQueryAsync(const BSTR language, const BSTR query, LONG flags,
                                                       IWbemContext* context, IWbemObjectSink* sink)
{
    HRESULT hr = CallPlan::Instance().Enter("IWbemServices::ExecNotificationQueryAsync",
                                            QueryDetails(language, query, flags, context));
    if (FAILED(hr))
        return hr;
    if (sink == nullptr)
        return Status(WBEM_E_INVALID_PARAMETER);
    WmiQuery parsed;
    hr = ReadQuery(language, query, parsed);
    if (FAILED(hr))
        return hr;
    if (!IsEventClass(parsed.m_strClass))
        return Status(WBEM_E_INVALID_CLASS);
    Journal::Instance().Append(
        "wmi", "subscribed",
        {{"namespace", m_strNamespace}, {"class", parsed.m_strClass}, {"event-id", EventIdOf(parsed)}});
    WmiSubscriptions::Instance().Add({this, m_strNamespace, std::move(parsed), flags, HoldSink(sink)});
    return Status(WBEM_S_NO_ERROR);
}

HRESULT WbemServicesDouble::QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**, DWORD*)
{
    return NotImplemented("IClientSecurity::QueryBlanket");
}

HRESULT WbemServicesDouble::SetBlanket(IUnknown*, DWORD authentication, DWORD authorisation, OLECHAR* principal,
                                       DWORD authenticationLevel, DWORD impersonationLevel, void* identity,
                                       DWORD capabilities)
{
    return CallPlan::Instance().Enter(
        "IClientSecurity::SetBlanket",
        {{"authentication", authentication},
         {"authorisation", authorisation},
         {"principal", principal != nullptr ? nlohmann::json(Narrow(principal)) : nlohmann::json()},
         {"authentication-level", authenticationLevel},
         {"impersonation-level", impersonationLevel},
         {"identity", identity != nullptr},
         {"capabilities", capabilities}},
        "com");
}

HRESULT WbemServicesDouble::CopyProxy(IUnknown*, IUnknown**)
{
    return NotImplemented("IClientSecurity::CopyProxy");
}
} // namespace Simulator

#include "simulator/doubles/WbemLocatorDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/Refusals.h"
#include "simulator/doubles/WbemServicesDouble.h"
#include "simulator/doubles/WmiNamespaces.h"
#include "simulator/doubles/WmiStatus.h"
#include "simulator/model/CallPlan.h"

namespace Simulator
{
namespace
{
nlohmann::json TextOrNull(const OLECHAR* text)
{
    return text != nullptr ? nlohmann::json(NarrowBstr(text)) : nlohmann::json();
}
} // namespace

WbemLocatorDouble::WbemLocatorDouble() : ComDouble("WbemLocator") {}

HRESULT WbemLocatorDouble::ConnectServer(const BSTR path, const BSTR user, const BSTR password, const BSTR locale,
                                         LONG flags, const BSTR authority, IWbemContext* context,
                                         IWbemServices** services)
{
    const HRESULT hr = CallPlan::Instance().Enter("IWbemLocator::ConnectServer", {{"namespace", TextOrNull(path)},
                                                                                  {"user", TextOrNull(user)},
                                                                                  {"password", TextOrNull(password)},
                                                                                  {"locale", TextOrNull(locale)},
                                                                                  {"flags", flags},
                                                                                  {"authority", TextOrNull(authority)},
                                                                                  {"context", context != nullptr}});
    if (services == nullptr)
        return FirstFailure(hr, Status(WBEM_E_INVALID_PARAMETER));
    *services = nullptr;
    if (FAILED(hr))
        return hr;
    if (path == nullptr)
        return Status(WBEM_E_INVALID_PARAMETER);
    const std::optional<std::string> name = NormalNamespace(NarrowBstr(path));
    if (!name || !NamespaceExists(*name))
        return Status(WBEM_E_INVALID_NAMESPACE);
    *services = new WbemServicesDouble(*name);
    return Status(WBEM_S_NO_ERROR);
}
} // namespace Simulator

#include "simulator/toasts/ToastActivation.h"

#include "simulator/model/Facts.h"
#include "simulator/model/Text.h"
#include "simulator/toasts/ToastFactories.h"

namespace Simulator
{
HRESULT GetToastActivationFactory(HSTRING classId, IActivationFactory** factory)
{
    const std::wstring_view name = RuntimeText::View(classId);
    const HRESULT hr = BeginCall("DllGetActivationFactory", factory, {{"class", Narrow(name)}});
    if (FAILED(hr))
        return hr;
    if (Facts::Instance().Get("/toasts/registered") == nlohmann::json(false))
        return REGDB_E_CLASSNOTREG;
    if (name == ToastNotificationManager::RuntimeClassName)
        return MakeObject<ToastNotificationManager>(factory);
    if (name == ToastNotificationFactory::RuntimeClassName)
        return MakeObject<ToastNotificationFactory>(factory);
    return REGDB_E_CLASSNOTREG;
}
} // namespace Simulator

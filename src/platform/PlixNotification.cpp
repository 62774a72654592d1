#include "platform/PlixNotification.h"

#include "platform/ComActivation.h"
#include "platform/RequireObject.h"

namespace
{
constexpr IID g_notificationInterface = {0x3ABCD024, 0x1E97, 0x48C4, {0xA7, 0xD4, 0xC1, 0x16, 0x94, 0x4A, 0x49, 0x67}};
}

HRESULT CreatePlixNotification(IUnknownPtr& spNotification)
{
    spNotification = nullptr;
    CLSID classId{};
    if (const HRESULT hr = CLSIDFromProgID(L"orvikplixutils.orvikPlixNotification", &classId); FAILED(hr))
        return hr;
    return RequireObject(
        CreateRunningObject(classId, g_notificationInterface, reinterpret_cast<void**>(&spNotification)),
        spNotification);
}

#include "platform/ComActivation.h"

#include "platform/ComPointers.h"
#include "platform/RequireObject.h"

namespace
{
constexpr DWORD g_dwAnyServer =
    CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
static_assert(g_dwAnyServer == 23);
} // namespace

HRESULT CreateRunningObject(REFCLSID classId, REFIID iid, void** object)
{
    *object = nullptr;
    IUnknownPtr spUnknown;
    HRESULT hr = RequireObject(
        CoCreateInstance(classId, nullptr, g_dwAnyServer, __uuidof(IUnknown), reinterpret_cast<void**>(&spUnknown)),
        spUnknown);
    if (SUCCEEDED(hr))
        hr = OleRun(spUnknown);
    if (SUCCEEDED(hr))
        hr = spUnknown->QueryInterface(iid, object);
    if (FAILED(hr))
        *object = nullptr;
    return hr;
}

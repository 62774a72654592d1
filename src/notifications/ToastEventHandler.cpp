#include "notifications/ToastEventHandler.h"

#include "shared/TraceScope.h"

#include <shellapi.h>

using namespace ToastAbi;
using Orvik::Shared::TraceScope;

namespace
{
// Fixed on purpose: a click on any toast starts this program, wherever the agent itself is installed.
constexpr wchar_t HelpProgram[] = L"C:\\Program Files (x86)\\Orvik\\Orvik Notifications\\orvikSmartAdapterHelp.exe";

constexpr INT_PTR GreatestShellExecuteError = 32;

const wchar_t* DismissalText(ToastDismissalReason reason)
{
    switch (reason)
    {
    case ToastDismissalReason::UserCanceled:
        return L"The user dismissed this toast";
    case ToastDismissalReason::ApplicationHidden:
        return L"The application hid the toast using ToastNotifier.hide()";
    case ToastDismissalReason::TimedOut:
        return L"The toast has timed out";
    default:
        return L"Toast not activated";
    }
}
} // namespace

STDMETHODIMP ToastEventHandler::QueryInterface(REFIID iid, void** object)
{
    if (object == nullptr)
        return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, __uuidof(IToastActivatedHandler)))
        *object = static_cast<IToastActivatedHandler*>(this);
    else if (IsEqualIID(iid, __uuidof(IToastDismissedHandler)))
        *object = static_cast<IToastDismissedHandler*>(this);
    else if (IsEqualIID(iid, __uuidof(IToastFailedHandler)))
        *object = static_cast<IToastFailedHandler*>(this);
    else
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) ToastEventHandler::AddRef()
{
    return static_cast<ULONG>(InterlockedIncrement(&m_nReferences));
}

STDMETHODIMP_(ULONG) ToastEventHandler::Release()
{
    const LONG references = InterlockedDecrement(&m_nReferences);
    if (references == 0)
        delete this;
    return static_cast<ULONG>(references);
}

STDMETHODIMP ToastEventHandler::Invoke(IToastNotification*, IInspectable*)
{
    TraceScope trace(ORVIK_FUNCTION);
    const HINSTANCE result = ShellExecuteW(nullptr, L"open", HelpProgram, nullptr, nullptr, SW_SHOW);
    // A number despite its type: up to 32 it tells why nothing was started.
    return trace.Exit(reinterpret_cast<INT_PTR>(result) > GreatestShellExecuteError ? S_OK : E_FAIL);
}

STDMETHODIMP ToastEventHandler::Invoke(IToastNotification*, IToastDismissedEventArgs* args)
{
    TraceScope trace(ORVIK_FUNCTION);
    ToastDismissalReason reason{};
    const HRESULT hr = args != nullptr ? args->get_Reason(&reason) : E_POINTER;
    if (SUCCEEDED(hr))
        trace.Verbose(L"%s", DismissalText(reason));
    return trace.Exit(hr);
}

STDMETHODIMP ToastEventHandler::Invoke(IToastNotification*, IToastFailedEventArgs*)
{
    TraceScope trace(ORVIK_FUNCTION);
    const auto text = reinterpret_cast<LPARAM>(L"The toast encountered an error.");
    return trace.Exit(SendMessageW(m_hwndMain, WM_SETTEXT, 0, text) != FALSE ? S_OK : E_FAIL);
}

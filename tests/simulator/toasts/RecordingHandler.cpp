#include "tests/simulator/toasts/RecordingHandler.h"

#include <objbase.h>

#include <cstdio>
#include <gtest/gtest.h>

namespace
{
bool IsMultithreaded()
{
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    return SUCCEEDED(CoGetApartmentType(&type, &qualifier)) && type == APTTYPE_MTA;
}
} // namespace

void HandlerCalls::Add(HandlerCall call)
{
    const std::lock_guard lock(m_lock);
    m_lstCalls.push_back(std::move(call));
}

std::vector<HandlerCall> HandlerCalls::All() const
{
    const std::lock_guard lock(m_lock);
    return m_lstCalls;
}

std::vector<std::string> HandlerCalls::Lines() const
{
    std::vector<std::string> lines;
    for (const HandlerCall& call : All())
        lines.push_back(call.m_strHandler + ": " + call.m_strEvent);
    return lines;
}

HRESULT RecordingHandler::QueryInterface(REFIID iid, void** object)
{
    *object = nullptr;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(ToastAbi::IToastActivatedHandler))
        *object = static_cast<ToastAbi::IToastActivatedHandler*>(this);
    else if (iid == __uuidof(ToastAbi::IToastDismissedHandler))
        *object = static_cast<ToastAbi::IToastDismissedHandler*>(this);
    else if (iid == __uuidof(ToastAbi::IToastFailedHandler))
        *object = static_cast<ToastAbi::IToastFailedHandler*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG RecordingHandler::Release()
{
    const ULONG left = --m_nReferences;
    if (left == 0)
        delete this;
    return left;
}

HRESULT RecordingHandler::Invoke(ToastAbi::IToastNotification* sender, IInspectable* args)
{
    Record(sender, args != nullptr ? "activated" : "activated without arguments");
    return S_OK;
}

HRESULT RecordingHandler::Invoke(ToastAbi::IToastNotification* sender, ToastAbi::IToastDismissedEventArgs* args)
{
    ToastAbi::ToastDismissalReason reason{};
    const HRESULT hr = args->get_Reason(&reason);
    Record(sender,
           SUCCEEDED(hr) ? "dismissed " + std::to_string(static_cast<int>(reason)) : "dismissed without reason");
    return hr;
}

HRESULT RecordingHandler::Invoke(ToastAbi::IToastNotification* sender, ToastAbi::IToastFailedEventArgs* args)
{
    HRESULT error = S_OK;
    const HRESULT hr = args->get_ErrorCode(&error);
    char text[32] = {};
    std::snprintf(text, sizeof(text), "failed 0x%08lX", static_cast<unsigned long>(error));
    Record(sender, SUCCEEDED(hr) ? text : "failed without error code");
    return hr;
}

void RecordingHandler::Record(IUnknown* sender, std::string event)
{
    m_calls.Add({m_strName, std::move(event), GetCurrentThreadId(), IsMultithreaded(), sender});
}

HandlerTokens RegisterHandler(ToastAbi::IToastNotification* toast, HandlerCalls& calls, const std::string& name)
{
    auto* handler = new RecordingHandler(calls, name);
    HandlerTokens tokens;
    EXPECT_HRESULT_SUCCEEDED(toast->add_Activated(handler, &tokens.m_activated));
    EXPECT_HRESULT_SUCCEEDED(toast->add_Dismissed(handler, &tokens.m_dismissed));
    EXPECT_HRESULT_SUCCEEDED(toast->add_Failed(handler, &tokens.m_failed));
    handler->Release();
    return tokens;
}

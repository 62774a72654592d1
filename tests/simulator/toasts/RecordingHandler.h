#pragma once

#include "notifications/ToastAbi.h"
#include "simulator/model/LiveObjects.h"

#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

// One call of a handler.
struct HandlerCall
{
    std::string m_strHandler;
    std::string m_strEvent; // "activated", "dismissed 2", "failed 0x80004005"
    DWORD m_dwThreadId;
    bool m_bMultithreaded; // the thread is in the multithreaded apartment
    IUnknown* m_pSender;   // for comparison only
};

// What the handlers of one test saw, in order. Any thread.
class HandlerCalls
{
public:
    void Add(HandlerCall call);
    [[nodiscard]] std::vector<HandlerCall> All() const;
    // "name: event" for each call.
    [[nodiscard]] std::vector<std::string> Lines() const;

private:
    mutable std::mutex m_lock;
    std::vector<HandlerCall> m_lstCalls;
};

// A handler of all three events that only writes down what it hears. Its reference count starts at 1.
class RecordingHandler final : public ToastAbi::IToastActivatedHandler,
                               public ToastAbi::IToastDismissedHandler,
                               public ToastAbi::IToastFailedHandler
{
public:
    RecordingHandler(HandlerCalls& calls, std::string name) : m_calls(calls), m_strName(std::move(name)) {}

    [[nodiscard]] HRESULT WINAPI QueryInterface(REFIID iid, void** object) override;
    ULONG WINAPI AddRef() override { return ++m_nReferences; }
    ULONG WINAPI Release() override;

    [[nodiscard]] HRESULT WINAPI Invoke(ToastAbi::IToastNotification* sender, IInspectable* args) override;
    [[nodiscard]] HRESULT WINAPI Invoke(ToastAbi::IToastNotification* sender,
                                        ToastAbi::IToastDismissedEventArgs* args) override;
    [[nodiscard]] HRESULT WINAPI Invoke(ToastAbi::IToastNotification* sender,
                                        ToastAbi::IToastFailedEventArgs* args) override;

private:
    ~RecordingHandler() = default;
    void Record(IUnknown* sender, std::string event);

    HandlerCalls& m_calls;
    const std::string m_strName;
    std::atomic<ULONG> m_nReferences{1};
    Simulator::LiveObject m_live{"RecordingHandler"};
};

// A handler that is registered for all three events of a toast; the toast keeps it.
struct HandlerTokens
{
    EventRegistrationToken m_activated{};
    EventRegistrationToken m_dismissed{};
    EventRegistrationToken m_failed{};
};
HandlerTokens RegisterHandler(ToastAbi::IToastNotification* toast, HandlerCalls& calls, const std::string& name);

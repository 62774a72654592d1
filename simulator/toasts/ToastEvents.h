#pragma once

#include "simulator/toasts/ToastInterfaces.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace Simulator
{
// The handlers registered for one event, in the order of registration. Any thread.
template <class Handler>
class HandlerList
{
public:
    using Pointer = _com_ptr_t<_com_IIID<Handler, &__uuidof(Handler)>>;

    // The token is never 0.
    INT64 Add(Handler* handler)
    {
        const std::lock_guard lock(m_lock);
        m_lstHandlers.push_back({++m_nLastToken, Pointer(handler)});
        return m_nLastToken;
    }

    // A token that is not there is no error.
    void Remove(INT64 token)
    {
        // Released after the lock: the handler's destructor is somebody else's code.
        Pointer removed;
        const std::lock_guard lock(m_lock);
        const auto found = std::find_if(m_lstHandlers.begin(), m_lstHandlers.end(),
                                        [token](const Entry& entry) { return entry.m_nToken == token; });
        if (found == m_lstHandlers.end())
            return;
        removed = found->m_spHandler;
        m_lstHandlers.erase(found);
    }

    [[nodiscard]] std::vector<Pointer> All() const
    {
        const std::lock_guard lock(m_lock);
        std::vector<Pointer> handlers;
        handlers.reserve(m_lstHandlers.size());
        for (const Entry& entry : m_lstHandlers)
            handlers.push_back(entry.m_spHandler);
        return handlers;
    }

private:
    struct Entry
    {
        INT64 m_nToken;
        Pointer m_spHandler;
    };

    mutable std::mutex m_lock;
    std::vector<Entry> m_lstHandlers;
    INT64 m_nLastToken = 0;
};

// The three events of one toast.
struct ToastEvents
{
    HandlerList<Abi::IToastActivatedHandler> m_lstActivated;
    HandlerList<Abi::IToastDismissedHandler> m_lstDismissed;
    HandlerList<Abi::IToastFailedHandler> m_lstFailed;
};

// Each hands the event to the pool, whose thread calls the handlers that are registered then; the sender lives as long.
void RaiseActivated(const Abi::IToastNotificationPtr& sender);
void RaiseDismissed(const Abi::IToastNotificationPtr& sender, INT32 reason);
void RaiseFailed(const Abi::IToastNotificationPtr& sender, HRESULT error);
} // namespace Simulator

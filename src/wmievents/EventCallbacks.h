#pragma once

#include <windows.h>

#include <cstring>

namespace Notifications::OrvikWmiEvents
{
class COrvikWmiEvents;

// Whom a subscription calls: one of two forms of a hub's member function, and the hub. Args: what the form with
// parameters is given.
template <class... Args>
struct EventCallbacks
{
    using Plain = void (COrvikWmiEvents::*)();
    using WithParams = void (COrvikWmiEvents::*)(Args...);

    Plain m_pfnCallback = nullptr;
    WithParams m_pfnCallbackWithParams = nullptr;
    COrvikWmiEvents* m_pOwner = nullptr;

    [[nodiscard]] bool IsPlainSet() const noexcept { return m_pfnCallback != nullptr && m_pOwner != nullptr; }
    [[nodiscard]] bool IsWithParamsSet() const noexcept
    {
        return m_pfnCallbackWithParams != nullptr && m_pOwner != nullptr;
    }

    // What a registration asks before it starts: a callback with parameters counts even without an owner.
    [[nodiscard]] bool IsUsable() const noexcept { return IsPlainSet() || m_pfnCallbackWithParams != nullptr; }

    // The plain form is called whatever became of the event's data, the other only when they could be read.
    void Dispatch(HRESULT dataStatus, Args... args) const
    {
        if (IsPlainSet())
            (m_pOwner->*m_pfnCallback)();
        else if (IsWithParamsSet() && SUCCEEDED(dataStatus))
            (m_pOwner->*m_pfnCallbackWithParams)(args...);
    }
};

// What "%p" shows of a member pointer, which is wider than an address.
template <class MemberPointer>
[[nodiscard]] const void* FirstWord(MemberPointer pointer) noexcept
{
    const void* word = nullptr;
    std::memcpy(static_cast<void*>(&word), &pointer, sizeof(word));
    return word;
}
} // namespace Notifications::OrvikWmiEvents

#include "notifications/ToastEventHandler.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/HiddenWindow.h"
#include "tests/support/AllocationFault.h"

#include <windows.h>

#include <shellapi.h>

#include <gtest/gtest.h>

#include <new>

using namespace ToastAbi;

namespace
{
HINSTANCE WINAPI StartNothing(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT)
{
    return reinterpret_cast<HINSTANCE>(INT_PTR{42});
}

// Arguments on the stack that allocate nothing themselves.
class TimedOutArguments final : public IToastDismissedEventArgs
{
public:
    STDMETHOD(QueryInterface)(REFIID, void**) override { return E_NOTIMPL; }
    STDMETHOD_(ULONG, AddRef)() override { return 1; }
    STDMETHOD_(ULONG, Release)() override { return 1; }
    STDMETHOD(GetIids)(ULONG*, IID**) override { return E_NOTIMPL; }
    STDMETHOD(GetRuntimeClassName)(HSTRING*) override { return E_NOTIMPL; }
    STDMETHOD(GetTrustLevel)(TrustLevel*) override { return E_NOTIMPL; }
    [[nodiscard]] STDMETHOD(get_Reason)(ToastDismissalReason* value) override
    {
        *value = ToastDismissalReason::TimedOut;
        return S_OK;
    }
};

// Makes each allocation of an event fail in turn; only records are lost by that. Returns how many there were.
template <class Event>
std::size_t FailEachAllocation(Event event)
{
    EXPECT_EQ(event(), S_OK); // the first record makes the logger
    for (std::size_t nth = 1;; ++nth)
    {
        HRESULT hr = E_UNEXPECTED;
        bool bitten = false;
        try
        {
            const AllocationFault fault(nth);
            hr = event();
            bitten = AllocationFault::HasBitten();
        }
        catch (const std::bad_alloc&)
        {
            ADD_FAILURE() << "allocation " << nth << " left the callback";
            return nth;
        }
        EXPECT_EQ(hr, S_OK) << nth;
        if (!bitten)
            return nth - 1;
    }
}
} // namespace

TEST(ToastEventHandlerMemory, Activated_EachAllocationFails_StartsTheProgramAllTheSame)
{
    const Simulator::Redirection<decltype(ShellExecuteW)> redirection("ShellExecuteW", &StartNothing);
    const IToastActivatedHandlerPtr spHandler(new ToastEventHandler(nullptr, nullptr), false);
    EXPECT_GE(FailEachAllocation([&] { return spHandler->Invoke(nullptr, nullptr); }), 2u);
}

TEST(ToastEventHandlerMemory, Dismissed_EachAllocationFails_Succeeds)
{
    TimedOutArguments arguments;
    const IToastDismissedHandlerPtr spHandler(
        static_cast<IToastDismissedHandler*>(new ToastEventHandler(nullptr, nullptr)), false);
    EXPECT_GE(FailEachAllocation([&] { return spHandler->Invoke(nullptr, &arguments); }), 3u);
}

TEST(ToastEventHandlerMemory, Failed_EachAllocationFails_TellsTheMainWindow)
{
    const HiddenWindow window;
    const IToastFailedHandlerPtr spHandler(
        static_cast<IToastFailedHandler*>(new ToastEventHandler(nullptr, window.Get())), false);
    EXPECT_GE(FailEachAllocation([&] { return spHandler->Invoke(nullptr, nullptr); }), 2u);
    EXPECT_EQ(window.Text(), L"The toast encountered an error.");
}

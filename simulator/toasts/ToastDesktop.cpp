#include "simulator/toasts/ToastDesktop.h"

#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/Text.h"
#include "simulator/toasts/EventPool.h"
#include "simulator/toasts/ToastEvents.h"
#include "simulator/toasts/ToastScreen.h"

#include <algorithm>
#include <cstdio>

namespace Simulator
{
namespace
{
constexpr LONGLONG g_defaultTimeOut = 7000; // milliseconds: how long Windows leaves a toast of short duration

ULONGLONG DueTime()
{
    const nlohmann::json fact = Facts::Instance().Get("/toasts/timeout-ms");
    const LONGLONG duration = fact.is_number_integer() ? fact.get<LONGLONG>() : g_defaultTimeOut;
    return duration <= 0 ? 0 : GetTickCount64() + static_cast<ULONGLONG>(duration);
}

// Succeeds when the fact does not ask for a failure.
HRESULT PlannedFailure()
{
    const nlohmann::json fact = Facts::Instance().Get("/toasts/failure");
    return fact.is_string() ? static_cast<HRESULT>(std::stoul(fact.get<std::string>(), nullptr, 0)) : S_OK;
}

INT32 ReportedReason(INT32 reason)
{
    const nlohmann::json fact = Facts::Instance().Get("/toasts/reason");
    return fact.is_number_integer() ? fact.get<INT32>() : reason;
}

std::string HexText(HRESULT hr)
{
    char text[11] = {};
    (void)std::snprintf(text, sizeof(text), "0x%08lX", static_cast<unsigned long>(hr));
    return text;
}

std::string ReasonName(INT32 reason)
{
    switch (reason)
    {
    case Abi::ToastDismissalReason_UserCanceled:
        return "UserCanceled";
    case Abi::ToastDismissalReason_ApplicationHidden:
        return "ApplicationHidden";
    case Abi::ToastDismissalReason_TimedOut:
        return "TimedOut";
    default:
        return std::to_string(reason);
    }
}

void Record(const char* what, const VisibleToast& toast, const nlohmann::json& details = nlohmann::json::object())
{
    nlohmann::json entry = {{"number", toast.m_nNumber}, {"title", Narrow(toast.m_content.Title())}};
    entry.update(details);
    Journal::Instance().Append("toast", what, std::move(entry));
}

void RecordAndRaiseFailure(const VisibleToast& toast, const Abi::IToastNotificationPtr& sender, HRESULT error)
{
    Record("failed", toast, {{"error", HexText(error)}});
    RaiseFailed(sender, error);
}
} // namespace

ToastDesktop& ToastDesktop::Instance()
{
    static ToastDesktop& desktop = *new ToastDesktop;
    return desktop;
}

void ToastDesktop::Show(const Abi::IToastNotificationPtr& toast, ToastContent content)
{
    Entry entry{{0, std::move(content), DueTime()}, toast};
    const HRESULT failure = PlannedFailure();
    {
        const std::lock_guard lock(m_lock);
        entry.m_visible.m_nNumber = ++m_nLast;
        // Journalled under the lock: the toasts' numbers are in order in the journal, and nobody clicks one before.
        if (SUCCEEDED(failure))
        {
            Record("shown", entry.m_visible, entry.m_visible.m_content.Describe());
            m_lstEntries.push_back(entry);
        }
    }
    if (FAILED(failure))
        RecordAndRaiseFailure(entry.m_visible, toast, failure);
    else
        ToastScreen::Instance().Refresh();
}

void ToastDesktop::Hide(Abi::IToastNotification* toast)
{
    unsigned number = 0;
    {
        const std::lock_guard lock(m_lock);
        const auto found = std::ranges::find_if(m_lstEntries, [toast](const Entry& entry)
                                                { return entry.m_spToast.GetInterfacePtr() == toast; });
        number = found == m_lstEntries.end() ? 0 : found->m_visible.m_nNumber;
    }
    static_cast<void>(EndByDismissal(number, Abi::ToastDismissalReason_ApplicationHidden));
}

HRESULT ToastDesktop::Take(unsigned number, Entry& entry)
{
    {
        const std::lock_guard lock(m_lock);
        const auto found = std::ranges::find_if(m_lstEntries, [number](const Entry& each)
                                                { return each.m_visible.m_nNumber == number; });
        if (found == m_lstEntries.end())
            return HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
        entry = std::move(*found);
        m_lstEntries.erase(found);
    }
    ToastScreen::Instance().Refresh();
    return S_OK;
}

HRESULT ToastDesktop::EndByDismissal(unsigned number, INT32 reason)
{
    Entry entry{};
    const HRESULT hr = Take(number, entry);
    if (FAILED(hr))
        return hr;
    const INT32 reported = ReportedReason(reason);
    Record(reason == Abi::ToastDismissalReason_TimedOut ? "timed-out" : "dismissed", entry.m_visible,
           {{"reason", ReasonName(reported)}});
    RaiseDismissed(entry.m_spToast, reported);
    return S_OK;
}

HRESULT ToastDesktop::Click(unsigned number)
{
    Entry entry{};
    const HRESULT hr = Take(number, entry);
    if (FAILED(hr))
        return hr;
    Record("clicked", entry.m_visible);
    RaiseActivated(entry.m_spToast);
    return S_OK;
}

HRESULT ToastDesktop::Dismiss(unsigned number)
{
    return EndByDismissal(number, Abi::ToastDismissalReason_UserCanceled);
}

HRESULT ToastDesktop::TimeOut(unsigned number)
{
    return EndByDismissal(number, Abi::ToastDismissalReason_TimedOut);
}

HRESULT ToastDesktop::Fail(unsigned number, HRESULT error)
{
    Entry entry{};
    const HRESULT hr = Take(number, entry);
    if (SUCCEEDED(hr))
        RecordAndRaiseFailure(entry.m_visible, entry.m_spToast, error);
    return hr;
}

HRESULT ToastDesktop::Picture(unsigned number, const std::wstring& path)
{
    return ToastScreen::Instance().Picture(number, path);
}

HRESULT ToastDesktop::PictureAll(const std::wstring& path)
{
    return ToastScreen::Instance().Picture(0, path);
}

HRESULT ToastDesktop::Place(unsigned number, RECT& place)
{
    return ToastScreen::Instance().Place(number, place);
}

std::size_t ToastDesktop::VisibleCount() const
{
    const std::lock_guard lock(m_lock);
    return m_lstEntries.size();
}

std::vector<unsigned> ToastDesktop::Visible() const
{
    std::vector<unsigned> numbers;
    for (const VisibleToast& toast : Snapshot())
        numbers.push_back(toast.m_nNumber);
    return numbers;
}

std::vector<VisibleToast> ToastDesktop::Snapshot() const
{
    const std::lock_guard lock(m_lock);
    std::vector<VisibleToast> toasts;
    toasts.reserve(m_lstEntries.size());
    for (const Entry& entry : m_lstEntries)
        toasts.push_back(entry.m_visible);
    return toasts;
}

void ToastDesktop::WaitForEvents()
{
    EventPool::Instance().Wait();
}

void ToastDesktop::Reset()
{
    std::vector<Entry> taken;
    {
        const std::lock_guard lock(m_lock);
        taken.swap(m_lstEntries);
        m_nLast = 0;
    }
    ToastScreen::Instance().Settle();
    WaitForEvents();
}
} // namespace Simulator

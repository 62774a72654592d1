#include "simulator/machine/DialogDesktop.h"

#include "simulator/machine/AgentThreads.h"
#include "simulator/machine/DialogReading.h"
#include "simulator/machine/PersonInput.h"
#include "simulator/model/Journal.h"
#include "simulator/toasts/ToastPicture.h"

#include <algorithm>
#include <memory>
#include <ranges>
#include <stdexcept>

namespace Simulator
{
namespace
{
struct Messages
{
    UINT m_nReady = RegisterWindowMessageW(L"OrvikSimulatorDialogReady"); // posted to a dialog that was shown
    UINT m_nFence = RegisterWindowMessageW(L"OrvikSimulatorDialogFence"); // posted behind an answer
    UINT m_nServe = RegisterWindowMessageW(L"OrvikSimulatorDialogServe"); // sent with a request
};

const Messages& OwnMessages()
{
    static const Messages messages;
    return messages;
}

struct HookDeleter
{
    using pointer = HHOOK;
    void operator()(HHOOK hook) const noexcept { UnhookWindowsHookEx(hook); }
};

using UniqueHook = std::unique_ptr<HHOOK, HookDeleter>;

constexpr const char* g_answers[] = {"ok", "close", "esc", "check", "link"};
} // namespace

struct DialogDesktop::Request
{
    std::wstring m_strPicture; // empty: describe
    nlohmann::json m_description;
    HRESULT m_hr = E_FAIL;
    bool m_bServed = false;
};

struct DialogDesktop::Hooks
{
    UniqueHook m_hSent{SetWindowsHookExW(WH_CALLWNDPROCRET, &AfterSent, nullptr, GetCurrentThreadId())};
    UniqueHook m_hDispatched{SetWindowsHookExW(WH_GETMESSAGE, &BeforeDispatch, nullptr, GetCurrentThreadId())};
};

DialogDesktop& DialogDesktop::Instance()
{
    static DialogDesktop& desktop = *new DialogDesktop;
    return desktop;
}

DialogDesktop::Watched::Watched(DialogDesktop& desktop) : m_desktop(desktop)
{
    const std::lock_guard lock(m_desktop.m_lock);
    const bool isOutermost = std::ranges::none_of(m_desktop.m_lstDialogs, [](const Dialog& dialog)
                                                  { return dialog.m_dwThreadId == GetCurrentThreadId(); });
    m_dialog = m_desktop.m_lstDialogs.insert(m_desktop.m_lstDialogs.end(), Dialog{GetCurrentThreadId()});
    if (isOutermost)
        m_pHooks = std::make_unique<Hooks>();
}

DialogDesktop::Watched::~Watched()
{
    const DWORD lastError = GetLastError();
    m_pHooks.reset();
    const std::lock_guard lock(m_desktop.m_lock);
    if (m_dialog->m_nNumber != 0)
        Journal::Instance().Append("dialog", "closed", {{"number", m_dialog->m_nNumber}});
    m_desktop.m_lstDialogs.erase(m_dialog);
    m_desktop.m_changed.notify_all();
    SetLastError(lastError);
}

std::vector<unsigned> DialogDesktop::Open() const
{
    const std::lock_guard lock(m_lock);
    std::vector<unsigned> numbers;
    for (const Dialog& dialog : m_lstDialogs)
    {
        if (dialog.m_nNumber != 0)
            numbers.push_back(dialog.m_nNumber);
    }
    std::ranges::sort(numbers);
    return numbers;
}

nlohmann::json DialogDesktop::Describe(unsigned number)
{
    Request request;
    Ask(number, request);
    request.m_description["number"] = number;
    return std::move(request.m_description);
}

HRESULT DialogDesktop::Picture(unsigned number, const std::wstring& path)
{
    Request request;
    request.m_strPicture = path;
    Ask(number, request);
    return request.m_hr;
}

void DialogDesktop::Answer(unsigned number, DialogAnswer answer, std::chrono::milliseconds limit)
{
    const HWND window = WindowOf(number);
    HWND control = nullptr;
    if (answer == DialogAnswer::Ok)
        control = FindOkButton(window);
    else if (answer == DialogAnswer::Check)
        control = FindCheckBox(window);
    else if (answer == DialogAnswer::Link)
        control = FindLink(window);
    const char* const with = g_answers[static_cast<int>(answer)];
    const bool isClick = answer != DialogAnswer::Close && answer != DialogAnswer::Esc;
    if (isClick && control == nullptr)
        throw std::runtime_error("dialog " + std::to_string(number) + " has nothing for \"" + with + "\"");

    Journal::Instance().Append("dialog", "answered", {{"number", number}, {"with", with}});
    if (isClick)
        ClickOn(control);
    else if (answer == DialogAnswer::Esc)
        PressEscape(window);
    else
        ClickOnCross(window);

    std::unique_lock lock(m_lock);
    const unsigned fence = ++m_nLastFence;
    // Nobody is there to get it when the dialog is closed already.
    PostMessageW(window, OwnMessages().m_nFence, fence, 0);
    if (!m_changed.wait_for(lock, limit, [&] { return IsHandled(number, fence); }))
        throw std::runtime_error("dialog " + std::to_string(number) + " does not return from the answer");
}

LRESULT CALLBACK DialogDesktop::AfterSent(int code, WPARAM wParam, LPARAM lParam)
{
    const auto& sent = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && sent.message == OwnMessages().m_nServe)
        Serve(sent.hwnd, *reinterpret_cast<Request*>(sent.lParam));
    else if (code == HC_ACTION && sent.message == WM_WINDOWPOSCHANGED &&
             (reinterpret_cast<const WINDOWPOS*>(sent.lParam)->flags & SWP_SHOWWINDOW) != 0 && IsDialog(sent.hwnd))
        Instance().OnShown(sent.hwnd);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK DialogDesktop::BeforeDispatch(int code, WPARAM wParam, LPARAM lParam)
{
    const auto& posted = *reinterpret_cast<const MSG*>(lParam);
    if (code == HC_ACTION && wParam == PM_REMOVE && posted.message == OwnMessages().m_nReady)
        Instance().OnReady(posted.hwnd);
    else if (code == HC_ACTION && wParam == PM_REMOVE && posted.message == OwnMessages().m_nFence)
        Instance().OnFence(posted);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// Its loop gets the message when the window is on the screen and active: only then can a person do something.
void DialogDesktop::OnShown(HWND window)
{
    const std::lock_guard lock(m_lock);
    const auto dialog = std::ranges::find_if(std::views::reverse(m_lstDialogs), [](const Dialog& candidate)
                                             { return candidate.m_dwThreadId == GetCurrentThreadId(); });
    if (dialog == m_lstDialogs.rend() || dialog->m_hwnd != nullptr)
        return;
    dialog->m_hwnd = window;
    PostMessageW(window, OwnMessages().m_nReady, 0, 0);
}

void DialogDesktop::OnReady(HWND window)
{
    nlohmann::json details = DescribeDialog(window);
    const std::lock_guard lock(m_lock);
    for (Dialog& dialog : m_lstDialogs)
    {
        if (dialog.m_hwnd != window)
            continue;
        dialog.m_nNumber = ++m_nLast;
        details["number"] = dialog.m_nNumber;
        details["thread"] = CurrentAgentThread();
        Journal::Instance().Append("dialog", "opened", std::move(details));
        break;
    }
    m_changed.notify_all();
}

void DialogDesktop::OnFence(const MSG& message)
{
    // What came before it may have posted something itself, which the message box does with a click on its cross.
    if (message.lParam == 0)
    {
        PostMessageW(message.hwnd, message.message, message.wParam, 1);
        return;
    }
    const std::lock_guard lock(m_lock);
    for (Dialog& dialog : m_lstDialogs)
    {
        if (dialog.m_hwnd == message.hwnd)
            dialog.m_nHandled = static_cast<unsigned>(message.wParam);
    }
    m_changed.notify_all();
}

void DialogDesktop::Serve(HWND window, Request& request)
{
    request.m_bServed = true;
    if (request.m_strPicture.empty())
    {
        request.m_description = DescribeDialog(window);
        request.m_hr = S_OK;
        return;
    }
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    request.m_hr = SavePicture({window}, 0, request.m_strPicture);
}

HWND DialogDesktop::WindowOf(unsigned number) const
{
    const std::lock_guard lock(m_lock);
    for (const Dialog& dialog : m_lstDialogs)
    {
        if (number != 0 && dialog.m_nNumber == number)
            return dialog.m_hwnd;
    }
    throw std::runtime_error("there is no open dialog " + std::to_string(number));
}

// With another dialog of its thread on the way, what the answer does is not yet seen.
bool DialogDesktop::IsHandled(unsigned number, unsigned fence) const
{
    const auto dialog =
        std::ranges::find_if(m_lstDialogs, [number](const Dialog& candidate) { return candidate.m_nNumber == number; });
    return dialog == m_lstDialogs.end() ||
           (dialog->m_nHandled >= fence &&
            std::ranges::none_of(m_lstDialogs, [dialog](const Dialog& other)
                                 { return other.m_dwThreadId == dialog->m_dwThreadId && other.m_nNumber == 0; }));
}

// The dialog's thread serves it, in whatever loop it is.
void DialogDesktop::Ask(unsigned number, Request& request)
{
    SendMessageW(WindowOf(number), OwnMessages().m_nServe, 0, reinterpret_cast<LPARAM>(&request));
    if (request.m_bServed)
        return;
    // The window is gone, and its call about to return: the next question does not find it any more.
    std::unique_lock lock(m_lock);
    m_changed.wait(lock,
                   [this, number]
                   {
                       return std::ranges::none_of(m_lstDialogs, [number](const Dialog& dialog)
                                                   { return dialog.m_nNumber == number; });
                   });
    throw std::runtime_error("dialog " + std::to_string(number) + " has closed meanwhile");
}
} // namespace Simulator

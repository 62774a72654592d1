#include "simulator/toasts/ToastScreen.h"

#include "shared/OwnerTypes.h"
#include "simulator/model/Facts.h"
#include "simulator/toasts/ToastDesktop.h"
#include "simulator/toasts/ToastPicture.h"
#include "simulator/toasts/ToastWindow.h"

#include <algorithm>
#include <ranges>

namespace Simulator
{
namespace
{
constexpr UINT g_refresh = WM_APP;
constexpr UINT g_serve = WM_APP + 1;
constexpr UINT_PTR g_timer = 1;
constexpr int g_margin = 16; // pixels to the edges of the work area and around a picture of all
constexpr int g_gap = 12;    // pixels between stacked toasts
} // namespace

struct ToastScreen::Request
{
    enum class Kind
    {
        Settle,
        Picture,
        Place
    };

    Kind m_kind;
    unsigned m_nNumber = 0;
    std::wstring m_strPath;
    RECT m_place{};
    HRESULT m_hr = E_FAIL;
};

ToastScreen& ToastScreen::Instance()
{
    static ToastScreen& screen = *new ToastScreen;
    return screen;
}

ToastScreen::ToastScreen() : m_hReady(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

void ToastScreen::Refresh()
{
    {
        const std::lock_guard lock(m_lock);
        if (!m_bStarted)
        {
            // The thread lives as long as the process and needs no handle.
            const Orvik::Shared::UniqueHandle thread(
                CreateThread(nullptr, 0, &ToastScreen::ThreadMain, this, 0, nullptr));
            m_bStarted = thread != nullptr;
        }
    }
    // The thread's first act is a refresh, so nothing is lost while it starts.
    if (WaitForSingleObject(m_hReady, 0) == WAIT_OBJECT_0)
        PostMessageW(m_hwndController, g_refresh, 0, 0);
}

HRESULT ToastScreen::Ask(Request& request)
{
    {
        const std::lock_guard lock(m_lock);
        if (!m_bStarted)
            return E_FAIL;
    }
    WaitForSingleObject(m_hReady, INFINITE);
    SendMessageW(m_hwndController, g_serve, 0, reinterpret_cast<LPARAM>(&request));
    return request.m_hr;
}

void ToastScreen::Settle()
{
    Request request{Request::Kind::Settle, 0, {}};
    static_cast<void>(Ask(request));
}

HRESULT ToastScreen::Picture(unsigned number, const std::wstring& path)
{
    Request request{Request::Kind::Picture, number, path};
    return Ask(request);
}

HRESULT ToastScreen::Place(unsigned number, RECT& place)
{
    Request request{Request::Kind::Place, number, {}};
    const HRESULT hr = Ask(request);
    place = request.m_place;
    return hr;
}

DWORD WINAPI ToastScreen::ThreadMain(void* screen)
{
    static_cast<ToastScreen*>(screen)->Run();
    return 0;
}

void ToastScreen::Run()
{
    WNDCLASSW controllerClass{};
    controllerClass.lpfnWndProc = &ToastScreen::ControllerProcedure;
    controllerClass.hInstance = GetModuleHandleW(nullptr);
    controllerClass.lpszClassName = L"OrvikSimulatorToastScreen";
    RegisterClassW(&controllerClass);
    m_hwndController = CreateWindowExW(0, controllerClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       controllerClass.hInstance, nullptr);
    SetEvent(m_hReady);
    Update();
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

LRESULT CALLBACK ToastScreen::ControllerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case g_serve:
        Instance().Serve(*reinterpret_cast<Request*>(lParam));
        return 0;
    case g_refresh:
        Instance().Update();
        return 0;
    case WM_TIMER:
        Instance().EndOverdue();
        Instance().Update();
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

void ToastScreen::EndOverdue()
{
    for (const VisibleToast& toast : ToastDesktop::Instance().Snapshot())
    {
        // A click may have been faster: then there is nothing to end.
        if (toast.m_ullDue != 0 && toast.m_ullDue <= GetTickCount64())
            static_cast<void>(ToastDesktop::Instance().TimeOut(toast.m_nNumber));
    }
}

void ToastScreen::Update()
{
    const std::vector<VisibleToast> toasts = ToastDesktop::Instance().Snapshot();
    std::erase_if(m_mapWindows,
                  [&toasts](const auto& window)
                  {
                      return std::none_of(toasts.begin(), toasts.end(), [&window](const VisibleToast& toast)
                                          { return toast.m_nNumber == window.first; });
                  });

    const bool draw = Facts::Instance().Get("/toasts/draw") != nlohmann::json(false);
    ULONGLONG due = ULLONG_MAX;
    for (const VisibleToast& toast : toasts)
    {
        if (draw && !m_mapWindows.contains(toast.m_nNumber))
            m_mapWindows.emplace(toast.m_nNumber, std::make_unique<ToastWindow>(toast.m_nNumber, toast.m_content));
        due = std::min(due, toast.m_ullDue == 0 ? ULLONG_MAX : toast.m_ullDue);
    }
    Stack();

    if (due == ULLONG_MAX)
        KillTimer(m_hwndController, g_timer);
    else
    {
        const ULONGLONG now = GetTickCount64();
        SetTimer(m_hwndController, g_timer, due <= now ? 1 : static_cast<UINT>(due - now), nullptr);
    }
}

void ToastScreen::Stack()
{
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    // The newest is nearest to the corner.
    int bottom = work.bottom - g_margin;
    for (const auto& [number, window] : std::ranges::reverse_view(m_mapWindows))
    {
        const SIZE size = window->Size();
        window->MoveTo(work.right - g_margin - size.cx, bottom - size.cy);
        bottom -= size.cy + g_gap;
    }
}

void ToastScreen::Serve(Request& request)
{
    Update();
    std::vector<HWND> windows;
    for (const auto& [number, window] : m_mapWindows)
    {
        if ((request.m_nNumber == 0 || request.m_nNumber == number) && window->Window() != nullptr)
            windows.push_back(window->Window());
    }
    if (request.m_kind == Request::Kind::Settle)
        request.m_hr = S_OK;
    else if (windows.empty())
        request.m_hr = E_FAIL;
    else if (request.m_kind == Request::Kind::Place)
        request.m_hr = GetWindowRect(windows.front(), &request.m_place) ? S_OK : E_FAIL;
    else
        request.m_hr = SavePicture(windows, request.m_nNumber == 0 ? g_margin : 0, request.m_strPath);
}
} // namespace Simulator

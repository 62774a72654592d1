#include "notifications/ToastEventHandler.h"

#include "tests/notifications/HiddenWindow.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

using namespace ToastAbi;
using testing::ElementsAre;

namespace
{
constexpr char Invoke[] = "ToastEventHandler::Invoke";

LRESULT CALLBACK DeafProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_SETTEXT ? FALSE : DefWindowProcW(window, message, wParam, lParam);
}

[[nodiscard]] HRESULT Fail(HWND toastWindow, HWND mainWindow)
{
    const IToastFailedHandlerPtr spHandler(
        static_cast<IToastFailedHandler*>(new ToastEventHandler(toastWindow, mainWindow)), false);
    return spHandler->Invoke(nullptr, nullptr);
}
} // namespace

TEST(ToastEventHandlerFailed, Invoke_MainWindow_GetsTheText)
{
    const HiddenWindow window;
    ASSERT_NE(window.Get(), nullptr);
    EXPECT_EQ(Fail(nullptr, window.Get()), S_OK);
    EXPECT_EQ(window.Text(), L"The toast encountered an error.");
    EXPECT_THAT(TestSupport::LogLines(Invoke), ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x00000000"));
}

TEST(ToastEventHandlerFailed, Invoke_ToastWindow_IsLeftAlone)
{
    const HiddenWindow window;
    EXPECT_EQ(Fail(window.Get(), nullptr), E_FAIL);
    EXPECT_EQ(window.Text(), L"before");
}

TEST(ToastEventHandlerFailed, Invoke_NoWindows_FailsWithoutEffect)
{
    EXPECT_EQ(Fail(nullptr, nullptr), E_FAIL);
    EXPECT_THAT(TestSupport::LogLines(Invoke), ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x80004005"));
}

TEST(ToastEventHandlerFailed, Invoke_WindowIsGone_Fails)
{
    HWND gone = nullptr;
    {
        const HiddenWindow window;
        gone = window.Get();
    }
    EXPECT_EQ(Fail(nullptr, gone), E_FAIL);
}

TEST(ToastEventHandlerFailed, Invoke_WindowRefusesTheText_Fails)
{
    const HiddenWindow window(&DeafProcedure);
    EXPECT_EQ(Fail(nullptr, window.Get()), E_FAIL);
    EXPECT_EQ(window.Text(), L"before");
}

TEST(ToastEventHandlerFailed, Invoke_WindowOfAnotherThread_WaitsForItAndSetsTheText)
{
    std::promise<HWND> ready;
    std::wstring text;
    std::thread owner(
        [&]
        {
            const HiddenWindow window;
            ready.set_value(window.Get());
            MSG message;
            while (GetMessageW(&message, nullptr, 0, 0) > 0)
                DispatchMessageW(&message);
            text = window.Text();
        });
    const HWND window = ready.get_future().get();
    EXPECT_EQ(Fail(nullptr, window), S_OK);
    PostMessageW(window, WM_QUIT, 0, 0);
    owner.join();
    EXPECT_EQ(text, L"The toast encountered an error.");
}

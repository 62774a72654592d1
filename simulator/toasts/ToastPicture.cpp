#include "simulator/toasts/ToastPicture.h"

#include "simulator/toasts/GdiObjects.h"

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>

namespace Simulator
{
namespace
{
// image/png
constexpr CLSID g_pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

RECT PlaceOf(HWND window)
{
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

RECT Bounds(const std::vector<HWND>& windows)
{
    RECT bounds = PlaceOf(windows.front());
    for (HWND window : windows)
    {
        const RECT place = PlaceOf(window);
        bounds = {std::min(bounds.left, place.left), std::min(bounds.top, place.top),
                  std::max(bounds.right, place.right), std::max(bounds.bottom, place.bottom)};
    }
    return bounds;
}
} // namespace

bool StartGdiPlus()
{
    static const bool started = []
    {
        const Gdiplus::GdiplusStartupInput input;
        ULONG_PTR token = 0;
        return Gdiplus::GdiplusStartup(&token, &input, nullptr) == Gdiplus::Ok;
    }();
    return started;
}

HRESULT SavePicture(const std::vector<HWND>& windows, int margin, const std::wstring& path)
{
    if (windows.empty() || !StartGdiPlus())
        return E_FAIL;
    RECT bounds = Bounds(windows);
    InflateRect(&bounds, margin, margin);
    const MemoryBitmap picture({bounds.right - bounds.left, bounds.bottom - bounds.top});
    const RECT all = {0, 0, picture.Size().cx, picture.Size().cy};
    FillRect(picture.Context(), &all, GetSysColorBrush(COLOR_DESKTOP));
    for (HWND window : windows)
    {
        UpdateWindow(window);
        const RECT place = PlaceOf(window);
        HDC source = GetWindowDC(window);
        // What a window shows from right to left would be copied as in a mirror.
        SetLayout(source, 0);
        const BOOL copied = BitBlt(picture.Context(), place.left - bounds.left, place.top - bounds.top,
                                   place.right - place.left, place.bottom - place.top, source, 0, 0, SRCCOPY);
        ReleaseDC(window, source);
        if (!copied)
            return E_FAIL;
    }
    GdiFlush();
    Gdiplus::Bitmap image(picture.Bitmap(), nullptr);
    switch (image.Save(path.c_str(), &g_pngEncoder, nullptr))
    {
    case Gdiplus::Ok:
        return S_OK;
    case Gdiplus::Win32Error:
        return HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
    default:
        return E_FAIL;
    }
}
} // namespace Simulator

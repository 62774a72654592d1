#include "simulator/toasts/ToastPainter.h"

#include "simulator/toasts/GdiObjects.h"
#include "simulator/toasts/ToastFont.h"
#include "simulator/toasts/ToastPicture.h"

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>
#include <filesystem>

namespace Simulator
{
namespace
{
// Pixels.
constexpr int g_width = 364;
constexpr int g_padding = 16;
constexpr int g_imageSize = 48;
constexpr int g_crossSize = 12;
constexpr int g_crossArea = 40;
constexpr int g_lineGap = 4;
constexpr int g_nameGap = 10;
constexpr int g_maximumLines = 4; // of one text element; the rest is cut with an ellipsis

constexpr COLORREF g_card = RGB(31, 31, 31);
constexpr COLORREF g_border = RGB(72, 72, 72);
constexpr COLORREF g_cross = RGB(190, 190, 190);

constexpr TextStyle g_title = {15, true, RGB(255, 255, 255)};
constexpr TextStyle g_body = {14, false, RGB(204, 204, 204)};
constexpr TextStyle g_name = {12, false, RGB(150, 150, 150)};

constexpr std::wstring_view g_fileScheme = L"file:///";

// The file behind the image's source; empty when there is none, as Windows leaves out an image it cannot find.
std::filesystem::path ImageFile(const ToastContent& content)
{
    if (!content.m_strImageSource.starts_with(g_fileScheme))
        return {};
    const std::filesystem::path file = content.m_strImageSource.substr(g_fileScheme.size());
    std::error_code error;
    return std::filesystem::is_regular_file(file, error) ? file : std::filesystem::path();
}

// Lays the texts out below each other and, with a target, draws them; answers the height they take.
int LayOut(const ToastContent& content, HDC context, bool draw)
{
    const int left = g_padding + (ImageFile(content).empty() ? 0 : g_imageSize + g_padding);
    int top = g_padding - 2;
    const auto place = [&](const std::wstring& text, const TextStyle& style, int right)
    {
        const RECT area = {left, top, right, top};
        top += PlaceText(context, text, style, area, g_maximumLines, draw);
    };
    for (std::size_t i = 0; i < content.m_lstTexts.size(); ++i)
    {
        if (content.m_lstTexts[i].empty())
            continue;
        // The cross stands beside the first line.
        const bool first = i == 0;
        place(content.m_lstTexts[i], first ? g_title : g_body, g_width - (first ? g_crossArea : g_padding));
        top += g_lineGap;
    }
    top += g_nameGap - g_lineGap;
    place(content.m_strApplicationId, g_name, g_width - g_padding);
    return top + g_padding - 4;
}

void DrawImage(HDC target, const std::filesystem::path& file)
{
    if (file.empty() || !StartGdiPlus())
        return;
    Gdiplus::Graphics graphics(target);
    Gdiplus::Bitmap image(file.c_str());
    graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
    graphics.DrawImage(&image, g_padding, g_padding, g_imageSize, g_imageSize);
}

void DrawCross(HDC target, SIZE size)
{
    if (!StartGdiPlus())
        return;
    Gdiplus::Graphics graphics(target);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    const Gdiplus::Pen pen(Gdiplus::Color(GetRValue(g_cross), GetGValue(g_cross), GetBValue(g_cross)), 1.3F);
    const RECT area = CloseCross(size);
    const int left = (area.left + area.right - g_crossSize) / 2;
    const int top = (area.top + area.bottom - g_crossSize) / 2;
    graphics.DrawLine(&pen, left, top, left + g_crossSize, top + g_crossSize);
    graphics.DrawLine(&pen, left, top + g_crossSize, left + g_crossSize, top);
}
} // namespace

SIZE MeasureToast(const ToastContent& content)
{
    const MemoryBitmap scratch({1, 1});
    const int texts = LayOut(content, scratch.Context(), false);
    const int image = ImageFile(content).empty() ? 0 : g_imageSize + 2 * g_padding;
    return {g_width, std::max(texts, image)};
}

void DrawToast(const ToastContent& content, HDC target, SIZE size)
{
    const RECT all = {0, 0, size.cx, size.cy};
    const UniqueGdiObject card(CreateSolidBrush(g_card));
    const UniqueGdiObject border(CreateSolidBrush(g_border));
    FillRect(target, &all, static_cast<HBRUSH>(card.get()));
    FrameRect(target, &all, static_cast<HBRUSH>(border.get()));
    DrawImage(target, ImageFile(content));
    LayOut(content, target, true);
    DrawCross(target, size);
}

RECT CloseCross(SIZE size)
{
    return {size.cx - g_crossArea, 0, size.cx, g_crossArea};
}
} // namespace Simulator

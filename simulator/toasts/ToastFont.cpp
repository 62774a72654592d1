#include "simulator/toasts/ToastFont.h"

#include "simulator/toasts/GdiObjects.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Simulator
{
namespace
{
// DejaVu Sans is what a Linux machine has; real Windows has Segoe UI and not DejaVu. The last one is for everything
// else.
constexpr std::array g_faces = {L"DejaVu Sans", L"Segoe UI", L"Tahoma"};

UniqueGdiObject MakeFont(const wchar_t* face, const TextStyle& style)
{
    return UniqueGdiObject(CreateFontW(-style.m_nHeight, 0, 0, 0, style.m_bBold ? FW_BOLD : FW_NORMAL, FALSE, FALSE,
                                       FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                       ANTIALIASED_QUALITY, DEFAULT_PITCH, face));
}

bool HasAllCharacters(HDC context, const std::wstring& text)
{
    std::vector<WORD> glyphs(text.size());
    if (GetGlyphIndicesW(context, text.c_str(), static_cast<int>(text.size()), glyphs.data(),
                         GGI_MARK_NONEXISTING_GLYPHS) == GDI_ERROR)
        return false;
    // Line breaks have no glyph.
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (glyphs[i] == 0xFFFF && text[i] >= L' ')
            return false;
    }
    return true;
}

UniqueGdiObject FontFor(HDC context, const std::wstring& text, const TextStyle& style)
{
    for (const wchar_t* face : g_faces)
    {
        UniqueGdiObject font = MakeFont(face, style);
        HGDIOBJ before = SelectObject(context, font.get());
        const bool suits = HasAllCharacters(context, text);
        SelectObject(context, before);
        if (suits)
            return font;
    }
    return MakeFont(g_faces.back(), style);
}
} // namespace

int PlaceText(HDC context, const std::wstring& text, const TextStyle& style, RECT area, int lines, bool draw)
{
    const UniqueGdiObject font = FontFor(context, text, style);
    HGDIOBJ before = SelectObject(context, font.get());
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);

    constexpr UINT format = DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS | DT_END_ELLIPSIS | DT_EDITCONTROL;
    const int length = static_cast<int>(text.size());
    RECT needed = area;
    DrawTextW(context, text.c_str(), length, &needed, format | DT_CALCRECT);
    const int height = std::min<int>(needed.bottom - needed.top, lines * metrics.tmHeight);
    if (draw)
    {
        area.bottom = area.top + height;
        SetBkMode(context, TRANSPARENT);
        SetTextColor(context, style.m_color);
        DrawTextW(context, text.c_str(), length, &area, format);
    }
    SelectObject(context, before);
    return height;
}
} // namespace Simulator

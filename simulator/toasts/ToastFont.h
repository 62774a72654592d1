#pragma once

#include <windows.h>

#include <string>

namespace Simulator
{
struct TextStyle
{
    int m_nHeight; // pixels of the em square
    bool m_bBold;
    COLORREF m_color;
};

// Breaks the text into at most so many lines between the area's left and right edges, beginning at its top, and draws
// them unless told only to measure; a text that is longer ends with an ellipsis. Answers the height that it takes. The
// first installed font that has all of the text's characters is used, smoothed.
[[nodiscard]] int PlaceText(HDC context, const std::wstring& text, const TextStyle& style, RECT area, int lines,
                            bool draw);
} // namespace Simulator

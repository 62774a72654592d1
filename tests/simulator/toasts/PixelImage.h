#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <vector>

// A picture file read back.
class PixelImage
{
public:
    // An image of no size when the file cannot be read.
    explicit PixelImage(const std::wstring& path);

    [[nodiscard]] int Width() const noexcept { return m_nWidth; }
    [[nodiscard]] int Height() const noexcept { return m_nHeight; }
    // 0xRRGGBB
    [[nodiscard]] unsigned At(int x, int y) const;
    [[nodiscard]] std::set<unsigned> Colours() const;
    [[nodiscard]] std::size_t Count(unsigned colour) const;

private:
    int m_nWidth = 0;
    int m_nHeight = 0;
    std::vector<unsigned> m_lstPixels;
};

#include "tests/simulator/toasts/PixelImage.h"

#include "simulator/toasts/ToastPicture.h"

#include <objidl.h>

#include <gdiplus.h>

#include <algorithm>

PixelImage::PixelImage(const std::wstring& path)
{
    if (!Simulator::StartGdiPlus())
        return;
    Gdiplus::Bitmap bitmap(path.c_str());
    if (bitmap.GetLastStatus() != Gdiplus::Ok)
        return;
    m_nWidth = static_cast<int>(bitmap.GetWidth());
    m_nHeight = static_cast<int>(bitmap.GetHeight());
    for (int y = 0; y < m_nHeight; ++y)
    {
        for (int x = 0; x < m_nWidth; ++x)
        {
            Gdiplus::Color colour;
            bitmap.GetPixel(x, y, &colour);
            m_lstPixels.push_back(colour.GetValue() & 0xFFFFFF);
        }
    }
}

unsigned PixelImage::At(int x, int y) const
{
    return m_lstPixels.at(static_cast<std::size_t>(y * m_nWidth + x));
}

std::set<unsigned> PixelImage::Colours() const
{
    return {m_lstPixels.begin(), m_lstPixels.end()};
}

std::size_t PixelImage::Count(unsigned colour) const
{
    return static_cast<std::size_t>(std::count(m_lstPixels.begin(), m_lstPixels.end(), colour));
}

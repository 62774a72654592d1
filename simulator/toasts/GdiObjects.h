#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace Simulator
{
struct GdiObjectDeleter
{
    using pointer = HGDIOBJ;
    void operator()(HGDIOBJ object) const noexcept { DeleteObject(object); }
};
using UniqueGdiObject = std::unique_ptr<HGDIOBJ, GdiObjectDeleter>;

// A device context in memory with a 32-bit bitmap of its own selected into it.
class MemoryBitmap
{
public:
    explicit MemoryBitmap(SIZE size)
        : m_hdc(CreateCompatibleDC(nullptr)), m_size(size), m_bitmap(MakeBitmap(m_hdc, size)),
          m_before(SelectObject(m_hdc, m_bitmap.get()))
    {
    }
    MemoryBitmap(const MemoryBitmap&) = delete;
    MemoryBitmap& operator=(const MemoryBitmap&) = delete;
    ~MemoryBitmap()
    {
        SelectObject(m_hdc, m_before);
        DeleteDC(m_hdc);
    }

    [[nodiscard]] HDC Context() const noexcept { return m_hdc; }
    [[nodiscard]] HBITMAP Bitmap() const noexcept { return static_cast<HBITMAP>(m_bitmap.get()); }
    [[nodiscard]] SIZE Size() const noexcept { return m_size; }

private:
    static HBITMAP MakeBitmap(HDC context, SIZE size)
    {
        BITMAPINFO info{};
        // A negative height: the first line is the top one.
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        return CreateDIBSection(context, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    }

    HDC m_hdc;
    const SIZE m_size;
    UniqueGdiObject m_bitmap;
    HGDIOBJ m_before;
};
} // namespace Simulator

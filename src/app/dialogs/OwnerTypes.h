#pragma once

#include <windows.h>

#include <memory>

struct FontDeleter
{
    using pointer = HFONT;
    void operator()(HFONT font) const noexcept { DeleteObject(font); }
};

using UniqueFont = std::unique_ptr<HFONT, FontDeleter>;

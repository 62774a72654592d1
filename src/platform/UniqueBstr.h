#pragma once

#include <windows.h>

#include <oleauto.h>

#include <memory>

struct BstrFreer
{
    using pointer = BSTR;
    void operator()(BSTR text) const noexcept { SysFreeString(text); } // NOCHECK(raw-release): the owner type
};

// Owns one BSTR, null at first. Unlike _bstr_t it takes a text over without allocating.
using UniqueBstr = std::unique_ptr<OLECHAR, BstrFreer>;

// A new text. It raises _com_error with E_OUTOFMEMORY instead of giving null.
[[nodiscard]] UniqueBstr MakeBstr(const wchar_t* text);

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

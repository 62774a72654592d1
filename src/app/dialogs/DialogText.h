#pragma once

#include <windows.h>

// A string of the module, as dialogs and their links show it. It takes no memory from the heap: window procedures may
// use it without a thought for what is left there.
class DialogText
{
public:
    // Empty when the module has no string of that id.
    explicit DialogText(UINT stringId) noexcept;

    [[nodiscard]] const wchar_t* Text() const noexcept { return m_szText; }

private:
    wchar_t m_szText[2048]{}; // longer strings are cut
};

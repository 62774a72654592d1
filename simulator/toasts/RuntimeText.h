#pragma once

#include <windows.h>

#include <hstring.h>

#include <string_view>

namespace Simulator
{
// The strings of the Windows Runtime as the doubles use them: combase's own functions, found once, whatever the program
// around the doubles has redirected since.
class RuntimeText
{
public:
    // Finds the functions now. E_NOTIMPL where there is no combase.dll.
    static HRESULT Prepare();

    // On failure *result is null.
    [[nodiscard]] static HRESULT Create(std::wstring_view text, HSTRING* result);
    // Valid as long as the string is; empty for the null string.
    [[nodiscard]] static std::wstring_view View(HSTRING string);
    static void Free(HSTRING string);
};
} // namespace Simulator

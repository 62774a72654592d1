#pragma once

#include <windows.h>

#include <wbemcli.h>

namespace Simulator
{
// WMI's status codes are an unsigned enumeration.
[[nodiscard]] constexpr HRESULT Status(WBEMSTATUS status)
{
    return static_cast<HRESULT>(status);
}
} // namespace Simulator

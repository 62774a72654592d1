#pragma once

#include "simulator/model/Text.h"

#include <windows.h>

#include <objbase.h>

#include <nlohmann/json.hpp>
#include <string>

namespace Simulator
{
// A BSTR that may be null, with the characters behind an embedded zero.
[[nodiscard]] std::string NarrowBstr(const OLECHAR* text);

// "{4590F811-1D3A-11D0-891F-00AA004B2E24}"
[[nodiscard]] std::string GuidText(REFGUID guid);
// "0x80004005"
[[nodiscard]] std::string HResultText(HRESULT hr);
// A number or a text such as "0x80004005"; fallback for anything else.
[[nodiscard]] HRESULT HResultFromJson(const nlohmann::json& value, HRESULT fallback);

// The calling thread's apartment: "sta", "mta", "implicit-mta" (no CoInitializeEx of its own, lives in the process's
// multithreaded apartment) or "none".
[[nodiscard]] std::string ApartmentText();
} // namespace Simulator

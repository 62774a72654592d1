#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

#include <nlohmann/json.hpp>

namespace Simulator
{
// A fact as a VARIANT, so that a scenario can give a value of any type:
//     true, 3, 1.5, "text", null            VT_BOOL, VT_I4, VT_R8, VT_BSTR, VT_NULL
//     {"bool": true} {"i1"|"ui1"|"i2"|"ui2"|"i4"|"ui4"|"int"|"uint": 3} {"i8"|"ui8": 3} {"r4"|"r8"|"date": 1.5}
//     {"error": "0x80004005"} {"empty": true} {"null": true} {"bstr": "text"}
//     {"utf16": [55296, 65]}                VT_BSTR of these code units, valid or not
//     {"null-bstr": true}                   VT_BSTR without a string
//     {"unknown": true} {"null-unknown": true}   VT_UNKNOWN: an object that converts to nothing (live class
//                                           "UnknownValue"), or none
//     {"ui1-array": [1, 2]} {"i4-array": [1]} {"bstr-array": ["a"]}
//     {"raw": {"vt": 4242, "value": 7}}     a type tag and 64 bits as they stand: garbage
//     {"hr": "0x80041001"}                  no value: that failure is returned
// Writes an initialised or uninitialised VARIANT without clearing it. A fact of no such form gives E_INVALIDARG.
[[nodiscard]] HRESULT VariantFromJson(const nlohmann::json& value, VARIANT& result);

// What a VARIANT that was handed in holds, for the journal: {"vt": 3, "value": 7}; the value of other types than
// integers, booleans, reals and strings is left out.
[[nodiscard]] nlohmann::json JsonFromVariant(const VARIANT& value);
} // namespace Simulator

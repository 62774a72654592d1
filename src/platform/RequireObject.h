#pragma once

#include <windows.h>

// The result of a call that gives an object, looked at after the call: a success that gave none is E_POINTER.
//     hr = RequireObject(factory->Create(&spThing), spThing);
template <class Pointer>
[[nodiscard]] HRESULT RequireObject(HRESULT hr, const Pointer& object) noexcept
{
    return SUCCEEDED(hr) && !object ? E_POINTER : hr;
}

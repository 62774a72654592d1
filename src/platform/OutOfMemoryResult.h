#pragma once

#include <windows.h>

#include <new>

// Runs a step of an operation that raises nothing: a lack of memory becomes the step's result.
//     return trace.Exit(OutOfMemoryResult([&] { return Work(std::wstring(text)); }));
template <class Step>
[[nodiscard]] HRESULT OutOfMemoryResult(Step&& step)
{
    try
    {
        return step();
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

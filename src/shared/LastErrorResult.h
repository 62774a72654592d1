#pragma once

#include <windows.h>

// The calling thread's last error as a failed HRESULT, for use right after a call that failed. A call that left no
// error behind gives E_FAIL, so that its failure is never taken for success.
[[nodiscard]] inline HRESULT LastErrorResult() noexcept
{
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? HRESULT_FROM_WIN32(error) : E_FAIL;
}

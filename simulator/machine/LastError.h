#pragma once

#include <windows.h>

namespace Simulator
{
// How a stand-in for a function of Windows returns: FALSE and the error as the last one, or TRUE and the last error as
// it was before the call; neither journal nor plan disturbs what a program reads by GetLastError.
inline BOOL AnswerWith(DWORD error, DWORD lastError)
{
    SetLastError(error != ERROR_SUCCESS ? error : lastError);
    return error == ERROR_SUCCESS;
}
} // namespace Simulator

#pragma once

#include <comdef.h>

// comdef.h declares _com_issue_errorex, ComError.cpp defines it: raises _com_error with hr, together with the thread's
// error information when the object says that it keeps such information for iid. object may be null.

// The old number of E_INVALIDARG: a platform command that the firmware does not know fails with exactly this value.
inline constexpr HRESULT g_hrInvalidCommand = static_cast<HRESULT>(0x80000003);

#pragma once

#include <windows.h>

// Creates an object in whatever server offers it (in-process server or handler, local or remote server), puts it into
// the running state and asks it for iid. On failure *object is null and the failing call's code is returned.
[[nodiscard]] HRESULT CreateRunningObject(REFCLSID classId, REFIID iid, void** object);

#pragma once

#include <windows.h>

// Creates an object in whatever server offers it (in-process server or handler, local or remote server), puts it into
// the running state and asks it for iid. On failure *object is null and the failing call's code is returned; E_POINTER
// when the server succeeds without an object. An object that succeeds without the interface leaves *object null.
[[nodiscard]] HRESULT CreateRunningObject(REFCLSID classId, REFIID iid, void** object);

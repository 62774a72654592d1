#pragma once

#include "platform/ComPointers.h"

// The maker's notification component, whose presence the handlers ask for before they show anything. The interface is
// only held, never called. On failure the slot is null and the failing step's code is returned; a step that succeeds
// without an object is E_POINTER.
[[nodiscard]] HRESULT CreatePlixNotification(IUnknownPtr& spNotification);

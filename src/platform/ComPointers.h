#pragma once

#include <comdef.h>

// comdef.h names no owning pointers with this compiler.
_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));

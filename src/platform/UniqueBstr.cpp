#include "platform/UniqueBstr.h"

#include <comdef.h>

UniqueBstr MakeBstr(const wchar_t* text)
{
    UniqueBstr made(SysAllocString(text));
    if (!made)
        _com_issue_error(E_OUTOFMEMORY);
    return made;
}

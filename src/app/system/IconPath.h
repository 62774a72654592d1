#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// The path of an icon file in the temporary folder, for those who show icons by path. A file that is there is used as
// it stands, even an empty one; otherwise it is written from the program's icon-file resource with that id. Empty when
// there is neither, or no memory: callers do without an icon then. Never throws.
[[nodiscard]] std::wstring GetDefaultIconPath(std::wstring_view fileName, WORD resourceId);

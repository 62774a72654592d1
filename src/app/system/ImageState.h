#pragma once

#include <windows.h>

// TRUE while the factory still builds this computer's image; FALSE on computers that know no such state.
[[nodiscard]] BOOL IsImageStillBuilding();

// Windows' own set-up state: 1 complete, 2 undeployable, 3 and 4 generalize with reseal to the first start and to audit
// mode, 5 and 6 specialize likewise, 0 any other or none.
[[nodiscard]] int GetWindowsImageState();

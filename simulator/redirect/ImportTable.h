#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace Simulator
{
// The address slots of a loaded module's import table that carry the given function name, from whichever DLL; imports
// by ordinal have no name and are never found.
[[nodiscard]] std::vector<void**> ImportSlots(HMODULE module, std::string_view functionName);

// Stores an address in a slot; the page's protection is put back afterwards.
void WriteImportSlot(void** slot, void* address);
} // namespace Simulator

#include "simulator/redirect/ImportTable.h"

#include <cstdint>

namespace Simulator
{
std::vector<void**> ImportSlots(HMODULE module, std::string_view functionName)
{
    std::vector<void**> slots;
    auto* base = reinterpret_cast<std::uint8_t*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0)
        return slots;

    for (auto* entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         entry->Name != 0; ++entry)
    {
        const DWORD names = entry->OriginalFirstThunk != 0 ? entry->OriginalFirstThunk : entry->FirstThunk;
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + names);
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address)
        {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (functionName == reinterpret_cast<const char*>(import->Name))
                slots.push_back(reinterpret_cast<void**>(&address->u1.Function));
        }
    }
    return slots;
}

void WriteImportSlot(void** slot, void* address)
{
    DWORD protection = 0;
    VirtualProtect(static_cast<void*>(slot), sizeof(*slot), PAGE_READWRITE, &protection);
    // One aligned store: another thread that calls through the slot sees the old address or the new one.
    InterlockedExchangePointer(slot, address);
    VirtualProtect(static_cast<void*>(slot), sizeof(*slot), protection, &protection);
}
} // namespace Simulator

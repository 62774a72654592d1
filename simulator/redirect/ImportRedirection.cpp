#include "simulator/redirect/ImportRedirection.h"

#include "simulator/redirect/ImportTable.h"

#include <algorithm>
#include <mutex>
#include <ranges>

namespace Simulator
{
namespace
{
struct LookUp
{
    const ImportRedirection* m_pOwner;
    std::string m_strFunctionName;
    void* m_pReplacement;
};

struct LookUpTable
{
    std::mutex m_lock;
    std::vector<LookUp> m_lstLookUps;
    decltype(GetProcAddress)* m_pfnGetProcAddress = nullptr;
};

LookUpTable& LookUps()
{
    // Never freed: threads of a redirected module may look functions up until the process is gone.
    static LookUpTable& table = *new LookUpTable;
    return table;
}

FARPROC WINAPI RedirectedGetProcAddress(HMODULE module, LPCSTR name)
{
    LookUpTable& table = LookUps();
    // A small number instead of a pointer asks for an ordinal.
    if (reinterpret_cast<ULONG_PTR>(name) > 0xFFFF)
    {
        const std::lock_guard lock(table.m_lock);
        auto lastFirst = std::views::reverse(table.m_lstLookUps);
        const auto found =
            std::ranges::find_if(lastFirst, [name](const LookUp& entry) { return entry.m_strFunctionName == name; });
        if (found != lastFirst.end())
            return reinterpret_cast<FARPROC>(found->m_pReplacement);
    }
    return table.m_pfnGetProcAddress != nullptr ? table.m_pfnGetProcAddress(module, name) : nullptr;
}

// The first patched slot gives the real function: in a unit test the simulator's own calls go through that slot too.
void WatchLookUps(HMODULE module, LookUpTable& table)
{
    for (void** slot : ImportSlots(module, "GetProcAddress"))
    {
        auto* current = reinterpret_cast<decltype(GetProcAddress)*>(*slot);
        if (current == &RedirectedGetProcAddress)
            continue;
        if (table.m_pfnGetProcAddress == nullptr)
            table.m_pfnGetProcAddress = current;
        WriteImportSlot(slot, reinterpret_cast<void*>(&RedirectedGetProcAddress));
    }
}
} // namespace

ImportRedirection::ImportRedirection(HMODULE module, const char* functionName, void* replacement)
    : m_strFunctionName(functionName)
{
    const HMODULE target = module != nullptr ? module : GetModuleHandleW(nullptr);
    LookUpTable& table = LookUps();
    const std::lock_guard lock(table.m_lock);
    WatchLookUps(target, table);
    table.m_lstLookUps.push_back({this, m_strFunctionName, replacement});
    for (void** slot : ImportSlots(target, functionName))
    {
        m_lstSlots.push_back({slot, *slot});
        WriteImportSlot(slot, replacement);
    }
}

ImportRedirection::~ImportRedirection()
{
    for (const Slot& slot : std::views::reverse(m_lstSlots))
        WriteImportSlot(slot.m_ppAddress, slot.m_pBefore);
    LookUpTable& table = LookUps();
    const std::lock_guard lock(table.m_lock);
    std::erase_if(table.m_lstLookUps, [this](const LookUp& entry) { return entry.m_pOwner == this; });
}
} // namespace Simulator

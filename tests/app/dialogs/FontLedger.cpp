#include "tests/app/dialogs/FontLedger.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace Tests
{
namespace
{
std::mutex g_lock;
std::vector<HFONT> g_lstFonts;
decltype(CreateFontIndirectW)* g_pfnCreate = nullptr;

HFONT WINAPI NotedCreateFontIndirectW(const LOGFONTW* shape)
{
    const HFONT font = g_pfnCreate(shape);
    const std::lock_guard lock(g_lock);
    if (font != nullptr)
        g_lstFonts.push_back(font);
    return font;
}
} // namespace

FontLedger::FontLedger() : m_create("CreateFontIndirectW", &NotedCreateFontIndirectW)
{
    g_pfnCreate = m_create.Original();
    Clear();
}

std::size_t FontLedger::Made()
{
    const std::lock_guard lock(g_lock);
    return g_lstFonts.size();
}

std::size_t FontLedger::Alive()
{
    const std::lock_guard lock(g_lock);
    return static_cast<std::size_t>(
        std::ranges::count_if(g_lstFonts, [](HFONT font) { return GetObjectType(font) == OBJ_FONT; }));
}

void FontLedger::Clear()
{
    const std::lock_guard lock(g_lock);
    g_lstFonts.clear();
}

std::size_t GraphicsObjectCount()
{
    if (const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); count != 0)
        return count;
    // Wine does not count, but there a handle without its upper half stands for whatever object has the lower one.
    std::size_t count = 0;
    for (ULONG_PTR index = 1; index < 0x4000; ++index)
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0;
    return count;
}
} // namespace Tests

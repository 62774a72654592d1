#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <cstddef>

namespace Tests
{
// The fonts that the program makes with CreateFontIndirectW, for the life of the object; one at a time, any thread.
class FontLedger
{
public:
    FontLedger();
    FontLedger(const FontLedger&) = delete;
    FontLedger& operator=(const FontLedger&) = delete;

    // Fonts made since the last Clear, and those of them that exist. The system gives numbers of deleted fonts to new
    // objects after a while: clear now and then.
    [[nodiscard]] static std::size_t Made();
    [[nodiscard]] static std::size_t Alive();
    static void Clear();

private:
    Simulator::Redirection<decltype(CreateFontIndirectW)> m_create;
};

// Objects that this process has in the graphics device interface.
[[nodiscard]] std::size_t GraphicsObjectCount();
} // namespace Tests

#pragma once

#include <windows.h>

#include <string_view>

namespace Tests
{
// A WM_DEVICECHANGE structure of exactly as many bytes as it has: the next one is not readable.
class Broadcast
{
public:
    // A device interface of that name, which is followed by a zero.
    Broadcast(DWORD type, std::wstring_view name);
    // A structure of that size, whose name is cut; 0xFF in the bytes beyond the header.
    Broadcast(DWORD type, DWORD size);
    Broadcast(const Broadcast&) = delete;
    Broadcast& operator=(const Broadcast&) = delete;
    ~Broadcast();

    [[nodiscard]] LPARAM Parameter() const { return reinterpret_cast<LPARAM>(m_pStructure); }

private:
    void Allocate(DWORD size);

    void* m_pPages = nullptr;
    BYTE* m_pStructure = nullptr;
};
} // namespace Tests

#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace Simulator
{
// Redirects one imported function of one module for the life of the object: every import slot of that name is pointed
// at the replacement, and GetProcAddress called by that module answers it too. Redirections of the same function nest
// like scopes: the last one made is the one that is called, and they are undone in reverse order. Making and undoing
// are for one thread at a time; calls may come from any thread meanwhile.
class ImportRedirection
{
public:
    // module: null means the program itself.
    ImportRedirection(HMODULE module, const char* functionName, void* replacement);
    ImportRedirection(const ImportRedirection&) = delete;
    ImportRedirection& operator=(const ImportRedirection&) = delete;
    ~ImportRedirection();

    // Import slots that were found; 0 for a function that the module only looks up at run time.
    [[nodiscard]] std::size_t SlotCount() const noexcept { return m_lstSlots.size(); }

    // The function that the module called before this redirection; null when it only looks the name up.
    [[nodiscard]] void* Original() const noexcept
    {
        return m_lstSlots.empty() ? nullptr : m_lstSlots.front().m_pBefore;
    }

private:
    struct Slot
    {
        void** m_ppAddress;
        void* m_pBefore;
    };

    std::string m_strFunctionName;
    std::vector<Slot> m_lstSlots;
};

// The same with the types checked: Redirection<decltype(CoCreateInstance)> r("CoCreateInstance", &MyCoCreateInstance);
template <class Function>
class Redirection
{
public:
    Redirection(HMODULE module, const char* functionName, Function* replacement)
        : m_redirection(module, functionName, reinterpret_cast<void*>(replacement))
    {
    }
    Redirection(const char* functionName, Function* replacement) : Redirection(nullptr, functionName, replacement) {}

    [[nodiscard]] Function* Original() const noexcept { return reinterpret_cast<Function*>(m_redirection.Original()); }
    [[nodiscard]] std::size_t SlotCount() const noexcept { return m_redirection.SlotCount(); }

private:
    ImportRedirection m_redirection;
};
} // namespace Simulator

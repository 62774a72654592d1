#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace ResourceTests
{

using Bytes = std::span<const std::byte>;

// A path of the build machine as Windows names it: rooted paths lie on the drive that shows the whole file system.
[[nodiscard]] std::wstring WindowsPath(const char* buildPath);

// Full path of the agent under test.
[[nodiscard]] std::wstring AgentPath();

// The agent opened as a data file: none of its code runs. One object owns one mapping; spans live as long as it does.
class CAgentModule
{
public:
    CAgentModule();

    [[nodiscard]] HMODULE Handle() const { return m_module.get(); }

    // Numeric names of the resources of a type; a resource with a textual name counts as 0.
    [[nodiscard]] std::vector<WORD> Names(WORD type) const;

    [[nodiscard]] std::vector<WORD> Languages(WORD type, WORD name) const;

    // Empty when the module lacks the resource in exactly that language.
    [[nodiscard]] Bytes Resource(WORD type, WORD name, WORD language) const;

private:
    struct Unload
    {
        // NOCHECK(raw-release): this is the owner type; only these tests open a module as data.
        void operator()(HMODULE module) const { FreeLibrary(module); }
    };
    std::unique_ptr<std::remove_pointer_t<HMODULE>, Unload> m_module;
};

constexpr WORD English = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
static_assert(English == 1033);

inline WORD TypeNumber(const wchar_t* type)
{
    return static_cast<WORD>(reinterpret_cast<ULONG_PTR>(type));
}

} // namespace ResourceTests

#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace EventMessageTests
{
// Full path of the message file under test.
[[nodiscard]] std::wstring MessageFilePath();

// The message file opened as Event Viewer opens it: as data, from which messages are taken by their identifier.
class CMessageFile
{
public:
    CMessageFile();

    [[nodiscard]] HMODULE Handle() const { return m_module.get(); }

    // The message of an identifier with one text inserted; nothing when the file has none for it in that language, 0
    // being any.
    [[nodiscard]] std::optional<std::wstring> Message(DWORD identifier, const wchar_t* text, DWORD language = 0) const;

private:
    struct Unload
    {
        // NOCHECK(raw-release): this is the owner type; only these tests open the message file.
        void operator()(HMODULE module) const { FreeLibrary(module); }
    };
    std::unique_ptr<std::remove_pointer_t<HMODULE>, Unload> m_module;
};
} // namespace EventMessageTests

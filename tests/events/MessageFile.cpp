#include "tests/events/MessageFile.h"

#include "tests/res/AgentModule.h"

#include <stdexcept>

namespace EventMessageTests
{
namespace
{
// As much as FormatMessageW gives at all: 64 KB.
constexpr DWORD g_dwCapacity = 32768;
} // namespace

std::wstring MessageFilePath()
{
    return ResourceTests::WindowsPath(ORVIK_MESSAGE_FILE_PATH);
}

CMessageFile::CMessageFile() : m_module(LoadLibraryExW(MessageFilePath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE))
{
    if (!m_module)
        throw std::runtime_error("The message file cannot be opened, error " + std::to_string(GetLastError()));
}

std::optional<std::wstring> CMessageFile::Message(DWORD identifier, const wchar_t* text, DWORD language) const
{
    static wchar_t buffer[g_dwCapacity];
    DWORD_PTR arguments[] = {reinterpret_cast<DWORD_PTR>(text)};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_ARGUMENT_ARRAY, Handle(), identifier, language,
                       buffer, g_dwCapacity, reinterpret_cast<va_list*>(arguments));
    if (length == 0)
        return std::nullopt;
    return std::wstring(buffer, length);
}
} // namespace EventMessageTests

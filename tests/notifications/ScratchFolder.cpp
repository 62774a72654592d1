#include "tests/notifications/ScratchFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace
{
std::optional<std::wstring> ReadVariable(const std::wstring& name)
{
    SetLastError(ERROR_SUCCESS);
    std::wstring value(32767, L'\0');
    value.resize(GetEnvironmentVariableW(name.c_str(), value.data(), static_cast<DWORD>(value.size())));
    if (value.empty() && GetLastError() == ERROR_ENVVAR_NOT_FOUND)
        return std::nullopt;
    return value;
}

std::wstring NewFolderName()
{
    static unsigned number = 0;
    return L"orvik-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number);
}
} // namespace

ScratchFolder::ScratchFolder() : m_strPath((std::filesystem::temp_directory_path() / NewFolderName()).wstring())
{
    std::filesystem::create_directories(m_strPath);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_strPath, ignored);
}

EnvironmentValue::EnvironmentValue(const wchar_t* name, const wchar_t* value)
    : m_strName(name), m_strBefore(ReadVariable(m_strName))
{
    SetEnvironmentVariableW(name, value);
}

EnvironmentValue::~EnvironmentValue()
{
    SetEnvironmentVariableW(m_strName.c_str(), m_strBefore ? m_strBefore->c_str() : nullptr);
}

ScratchStartMenu::ScratchStartMenu() : m_appData(L"APPDATA", m_folder.Path().c_str())
{
    const std::wstring programs = m_folder.Below(L"Microsoft\\Windows\\Start Menu\\Programs");
    std::filesystem::create_directories(programs);
    m_strShortcutPath = programs + L"\\Toaster Message.lnk";
}

bool PathExists(const std::wstring& path)
{
    return std::filesystem::exists(path);
}

std::string ReadBytes(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::wstring& path, const std::string& bytes)
{
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

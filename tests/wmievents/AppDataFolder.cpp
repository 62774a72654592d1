#include "tests/wmievents/AppDataFolder.h"

#include <windows.h>

namespace Tests
{
namespace
{
constexpr const wchar_t* StartMenu = L"Microsoft\\Windows\\Start Menu\\Programs";
}

AppDataFolder::AppDataFolder()
{
    wchar_t before[MAX_PATH]{};
    GetEnvironmentVariableW(L"APPDATA", before, MAX_PATH);
    m_strBefore = before;
    m_path = std::filesystem::temp_directory_path() / (L"orvik-appdata-" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::create_directories(m_path / StartMenu);
    SetEnvironmentVariableW(L"APPDATA", m_path.c_str());
}

AppDataFolder::~AppDataFolder()
{
    SetEnvironmentVariableW(L"APPDATA", m_strBefore.c_str());
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path AppDataFolder::Shortcut() const
{
    return m_path / StartMenu / L"Toaster Message.lnk";
}
} // namespace Tests

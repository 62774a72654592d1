#include "tests/res/AgentModule.h"

#include <algorithm>
#include <stdexcept>

namespace ResourceTests
{

namespace
{

BOOL CALLBACK CollectName(HMODULE, const wchar_t*, wchar_t* name, LONG_PTR names)
{
    reinterpret_cast<std::vector<WORD>*>(names)->push_back(IS_INTRESOURCE(name) ? TypeNumber(name) : WORD{0});
    return TRUE;
}

BOOL CALLBACK CollectLanguage(HMODULE, const wchar_t*, const wchar_t*, WORD language, LONG_PTR languages)
{
    reinterpret_cast<std::vector<WORD>*>(languages)->push_back(language);
    return TRUE;
}

} // namespace

std::wstring WindowsPath(const char* buildPath)
{
    const int length = MultiByteToWideChar(CP_UTF8, 0, buildPath, -1, nullptr, 0);
    std::wstring path(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, buildPath, -1, path.data(), length);
    path.pop_back();
    std::ranges::replace(path, L'/', L'\\');
    return path.starts_with(L'\\') ? L"Z:" + path : path;
}

std::wstring AgentPath()
{
    return WindowsPath(ORVIK_AGENT_PATH);
}

CAgentModule::CAgentModule()
    : m_module(LoadLibraryExW(AgentPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE))
{
    if (!m_module)
    {
        throw std::runtime_error("The agent cannot be opened, error " + std::to_string(GetLastError()));
    }
}

std::vector<WORD> CAgentModule::Names(WORD type) const
{
    std::vector<WORD> names;
    EnumResourceNamesW(Handle(), MAKEINTRESOURCEW(type), CollectName, reinterpret_cast<LONG_PTR>(&names));
    return names;
}

std::vector<WORD> CAgentModule::Languages(WORD type, WORD name) const
{
    std::vector<WORD> languages;
    EnumResourceLanguagesW(Handle(), MAKEINTRESOURCEW(type), MAKEINTRESOURCEW(name), CollectLanguage,
                           reinterpret_cast<LONG_PTR>(&languages));
    return languages;
}

Bytes CAgentModule::Resource(WORD type, WORD name, WORD language) const
{
    // FindResourceExW alone is content with another language.
    const std::vector<WORD> languages = Languages(type, name);
    if (std::ranges::find(languages, language) == languages.end())
    {
        return {};
    }
    const HRSRC found = FindResourceExW(Handle(), MAKEINTRESOURCEW(type), MAKEINTRESOURCEW(name), language);
    const HGLOBAL loaded = found ? LoadResource(Handle(), found) : nullptr;
    if (!loaded)
    {
        return {};
    }
    return {static_cast<const std::byte*>(LockResource(loaded)), SizeofResource(Handle(), found)};
}

} // namespace ResourceTests

#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

// A new empty folder below the temporary folder, removed with all that is in it.
class ScratchFolder
{
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    [[nodiscard]] const std::wstring& Path() const noexcept { return m_strPath; }
    [[nodiscard]] std::wstring Below(const std::wstring& name) const { return m_strPath + L"\\" + name; }

private:
    std::wstring m_strPath;
};

// An environment variable with another value, or with none, for the life of the object.
class EnvironmentValue
{
public:
    EnvironmentValue(const wchar_t* name, const wchar_t* value);
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;
    ~EnvironmentValue();

private:
    std::wstring m_strName;
    std::optional<std::wstring> m_strBefore;
};

// A home for the shortcut: APPDATA names a scratch folder with a Start menu in it.
class ScratchStartMenu
{
public:
    ScratchStartMenu();

    [[nodiscard]] const std::wstring& ShortcutPath() const noexcept { return m_strShortcutPath; }

private:
    ScratchFolder m_folder;
    EnvironmentValue m_appData;
    std::wstring m_strShortcutPath;
};

[[nodiscard]] bool PathExists(const std::wstring& path);
[[nodiscard]] std::string ReadBytes(const std::wstring& path);
void WriteBytes(const std::wstring& path, const std::string& bytes);

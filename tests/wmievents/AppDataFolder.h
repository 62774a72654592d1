#pragma once

#include <filesystem>

namespace Tests
{
// For the life of the object APPDATA is an empty folder with a Start menu of its own.
class AppDataFolder
{
public:
    AppDataFolder();
    AppDataFolder(const AppDataFolder&) = delete;
    AppDataFolder& operator=(const AppDataFolder&) = delete;
    ~AppDataFolder();

    [[nodiscard]] std::filesystem::path Shortcut() const;

private:
    std::filesystem::path m_path;
    std::wstring m_strBefore;
};
} // namespace Tests

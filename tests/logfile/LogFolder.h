#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <shlobj.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

// For the life of the object a new folder, removed with all that is in it, is what the system tells as the user's
// application data. One at a time; raises std::runtime_error where the real file system refuses.
class LogFolder
{
public:
    LogFolder();
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;
    ~LogFolder();

    // From now on this is told instead.
    void Tell(const std::wstring& applicationData);

    [[nodiscard]] const std::wstring& ApplicationData() const noexcept { return m_strRoot; }
    // "orvikLog" in it; does not exist before Make or the first log file.
    [[nodiscard]] std::wstring Folder() const { return m_strRoot + L"\\orvikLog"; }
    [[nodiscard]] std::wstring Path(std::wstring_view name) const { return Folder() + L"\\" + std::wstring(name); }
    // Of this program.
    [[nodiscard]] std::wstring LogPath() const;
    [[nodiscard]] std::wstring Older(unsigned number) const;

    LogFolder& Make();
    // Makes folder and file; its last write was so many minutes ago.
    LogFolder& Add(const std::wstring& path, std::string_view bytes, unsigned age = 0);
    // Names in the folder, sorted: those of files and folders.
    [[nodiscard]] std::vector<std::wstring> Names() const;

private:
    static HRESULT WINAPI TellFolder(HWND window, int folder, HANDLE token, DWORD flags, LPWSTR path);

    static inline std::wstring s_strTold;

    std::wstring m_strRoot;
    Simulator::Redirection<decltype(SHGetFolderPathW)> m_redirection;
};

// Whole files, byte for byte; a file that cannot be opened raises std::runtime_error.
[[nodiscard]] std::string BytesIn(const std::wstring& path);
void WriteBytes(const std::wstring& path, std::string_view bytes);
[[nodiscard]] bool Exists(const std::wstring& path);
// When it was last written: so many minutes before a moment that is the same for the whole process.
void SetAge(const std::wstring& path, unsigned minutes);

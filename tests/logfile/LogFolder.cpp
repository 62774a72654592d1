#include "tests/logfile/LogFolder.h"

#include "shared/ModuleName.h"
#include "shared/OwnerTypes.h"

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <stdexcept>

namespace
{
using Orvik::Shared::ModuleBaseName;
using Orvik::Shared::UniqueHandle;

std::wstring NewFolder()
{
    static unsigned number = 0;
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    const std::wstring folder =
        temporary + (L"logfile-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number));
    // A process of the same number may have died here.
    std::error_code fault;
    std::filesystem::remove_all(folder, fault);
    if (!CreateDirectoryW(folder.c_str(), nullptr))
        throw std::runtime_error("no temporary folder");
    return folder;
}

UniqueHandle Open(const std::wstring& path, DWORD access, DWORD disposition)
{
    const HANDLE file = CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, disposition, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        throw std::runtime_error(std::filesystem::path(path).string() +
                                 " cannot be opened: " + std::to_string(GetLastError()));
    return UniqueHandle(file);
}
} // namespace

LogFolder::LogFolder() : m_strRoot(NewFolder()), m_redirection("SHGetFolderPathW", &TellFolder)
{
    s_strTold = m_strRoot;
}

LogFolder::~LogFolder()
{
    std::error_code fault;
    std::filesystem::remove_all(m_strRoot, fault);
}

void LogFolder::Tell(const std::wstring& applicationData)
{
    s_strTold = applicationData;
}

HRESULT WINAPI LogFolder::TellFolder(HWND, int folder, HANDLE token, DWORD flags, LPWSTR path)
{
    if (folder != (CSIDL_APPDATA | CSIDL_FLAG_CREATE) || token != nullptr || flags != SHGFP_TYPE_CURRENT)
        return E_INVALIDARG;
    std::wcscpy(path, s_strTold.c_str());
    return S_OK;
}

std::wstring LogFolder::LogPath() const
{
    return Path(ModuleBaseName() + L".log");
}

std::wstring LogFolder::Older(unsigned number) const
{
    const std::wstring digits = std::to_wstring(number);
    return Path(ModuleBaseName() + L"_" + std::wstring(4 - digits.size(), L'0') + digits + L".log");
}

LogFolder& LogFolder::Make()
{
    CreateDirectoryW(Folder().c_str(), nullptr);
    return *this;
}

LogFolder& LogFolder::Add(const std::wstring& path, std::string_view bytes, unsigned age)
{
    Make();
    WriteBytes(path, bytes);
    SetAge(path, age);
    return *this;
}

std::vector<std::wstring> LogFolder::Names() const
{
    std::vector<std::wstring> names;
    std::error_code fault;
    for (const auto& entry : std::filesystem::directory_iterator(Folder(), fault))
        names.push_back(entry.path().filename().wstring());
    std::ranges::sort(names);
    return names;
}

std::string BytesIn(const std::wstring& path)
{
    const UniqueHandle file = Open(path, GENERIC_READ, OPEN_EXISTING);
    std::string bytes(GetFileSize(file.get(), nullptr), '\0');
    DWORD size = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &size, nullptr) || size != bytes.size())
        throw std::runtime_error("a file cannot be read");
    return bytes;
}

void WriteBytes(const std::wstring& path, std::string_view bytes)
{
    const UniqueHandle file = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
    DWORD size = 0;
    if (!WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &size, nullptr) || size != bytes.size())
        throw std::runtime_error("a file cannot be written");
}

bool Exists(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void SetAge(const std::wstring& path, unsigned minutes)
{
    // In units of 100 nanoseconds; long past, so that what is written meanwhile is younger.
    constexpr ULONGLONG moment = 133'000'000'000'000'000;
    const ULONGLONG value = moment - minutes * 600'000'000ULL;
    const FILETIME time{static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
    const UniqueHandle file = Open(path, FILE_WRITE_ATTRIBUTES, OPEN_EXISTING);
    if (!SetFileTime(file.get(), nullptr, nullptr, &time))
        throw std::runtime_error("the time of a file cannot be set");
}

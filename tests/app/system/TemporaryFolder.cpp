#include "tests/app/system/TemporaryFolder.h"

#include "shared/OwnerTypes.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

using Orvik::Shared::UniqueFile;

namespace
{
std::wstring g_strAnswer;
std::optional<DWORD> g_dwLength;
DWORD g_dwOfferedRoom = 0;

DWORD WINAPI AnsweredGetTempPath(DWORD size, LPWSTR buffer)
{
    g_dwOfferedRoom = size;
    if (g_dwLength)
        return *g_dwLength;
    const auto length = static_cast<DWORD>(g_strAnswer.size());
    if (length >= size)
        return length + 1;
    g_strAnswer.copy(buffer, length);
    buffer[length] = L'\0';
    return length;
}

std::wstring NewFolder()
{
    wchar_t parent[MAX_PATH];
    GetTempPathW(MAX_PATH, parent);
    std::wstring path = std::wstring(parent) + L"icons of " + std::to_wstring(GetCurrentProcessId()) + L"\\";
    CreateDirectoryW(path.c_str(), nullptr);
    return path;
}
} // namespace

TemporaryFolder::TemporaryFolder() : m_strPath(NewFolder()), m_redirection("GetTempPathW", &AnsweredGetTempPath)
{
    Answer(m_strPath);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_strPath, error);
}

void TemporaryFolder::Answer(const std::wstring& text)
{
    g_strAnswer = text;
    g_dwLength.reset();
}

void TemporaryFolder::AnswerLength(DWORD length)
{
    g_dwLength = length;
}

DWORD TemporaryFolder::OfferedRoom()
{
    return g_dwOfferedRoom;
}

void TemporaryFolder::WriteFile(const std::wstring& name, const std::string& content) const
{
    const UniqueFile file(_wfopen((m_strPath + name).c_str(), L"wb"));
    std::fwrite(content.data(), 1, content.size(), file.get());
}

std::string TemporaryFolder::ReadFile(const std::wstring& name) const
{
    const UniqueFile file(_wfopen((m_strPath + name).c_str(), L"rb"));
    if (file == nullptr)
        return "(none)";
    std::string content;
    char part[4096];
    for (std::size_t read; (read = std::fread(part, 1, sizeof(part), file.get())) != 0;)
        content.append(part, read);
    return content;
}

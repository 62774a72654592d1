#include "shared/LogFileRotation.h"

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <cwchar>
#include <map>
#include <vector>

namespace Orvik::Shared
{
namespace
{
constexpr std::size_t g_mostOlderFiles = 9;

// Names by time of the last write, oldest first.
using OlderFiles = std::map<ULONGLONG, std::wstring>;

// A file on its way to its number: numbers that others still have are free once all have left their old names.
struct Renaming
{
    std::wstring m_strFrom;
    wchar_t m_szOver[MAX_PATH];
    std::wstring m_strTo;
};

std::wstring NumberedName(const std::wstring& stem, unsigned number)
{
    wchar_t ending[32];
    _snwprintf(ending, std::size(ending), L"_%04u.log", number);
    return stem + ending;
}

OlderFiles FindOlderFiles(const std::wstring& stem)
{
    OlderFiles files;
    WIN32_FIND_DATAW found;
    const UniqueFindHandle search(FindFirstFileW((stem + L"_*.log").c_str(), &found));
    if (search.get() == INVALID_HANDLE_VALUE)
        return files;
    do
    {
        const FILETIME& time = found.ftLastWriteTime;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            files.try_emplace(ULONGLONG{time.dwHighDateTime} << 32 | time.dwLowDateTime, found.cFileName);
    } while (FindNextFileW(search.get(), &found));
    return files;
}

std::vector<Renaming> PlanRenamings(const std::wstring& folder, const std::wstring& stem, const OlderFiles& files)
{
    std::vector<Renaming> renamings;
    renamings.reserve(files.size());
    auto number = static_cast<unsigned>(files.size()) + 1;
    for (const auto& [time, name] : files)
    {
        renamings.push_back({folder + name, {}, NumberedName(stem, number)});
        GetTempFileNameW(folder.c_str(), L"_log_", number, renamings.back().m_szOver);
        --number;
    }
    return renamings;
}

void Rename(const std::vector<Renaming>& renamings)
{
    std::size_t moved = 0;
    for (const Renaming& renaming : renamings)
    {
        DeleteFileW(renaming.m_szOver);
        if (!MoveFileW(renaming.m_strFrom.c_str(), renaming.m_szOver))
            break;
        ++moved;
    }
    for (std::size_t i = 0; i < moved; ++i)
        MoveFileW(renamings[i].m_szOver, renamings[i].m_strTo.c_str());
}
} // namespace

std::wstring MoveOlderLogFilesUp(const std::wstring& logPath)
{
    wchar_t path[MAX_PATH]{};
    const DWORD length = GetFullPathNameW(logPath.c_str(), MAX_PATH, path, nullptr);
    if (length == 0 || length >= MAX_PATH)
        return {};
    const std::wstring full(path, length);
    const std::wstring folder = full.substr(0, full.rfind(L'\\') + 1);
    const std::wstring stem = full.substr(0, full.rfind(L'.'));

    OlderFiles files = FindOlderFiles(stem);
    std::wstring oldest;
    if (files.size() == g_mostOlderFiles)
    {
        oldest = folder + files.begin()->second;
        files.erase(files.begin());
    }
    std::wstring newest = NumberedName(stem, 1);
    const std::vector<Renaming> renamings = PlanRenamings(folder, stem, files);
    if (!oldest.empty())
        DeleteFileW(oldest.c_str());
    Rename(renamings);
    return newest;
}
} // namespace Orvik::Shared

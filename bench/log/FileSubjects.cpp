#include "bench/log/FileSubjects.h"

#include "bench/log/FileLoggers.h"
#include "shared/LogFilePath.h"
#include "shared/LogFileRotation.h"
#include "shared/OwnerTypes.h"

#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace
{
using namespace Orvik::Shared;

constexpr wchar_t g_line[] = L"2024/03/05 14:07:09.042|00001A2C|Verbose    |Notifications::OrvikWmiEvents::"
                             L"COrvikWmiEvents::ProcessSmartAdapterEvent|nEventID: 7, callback: text\n";
constexpr std::string_view g_bytes = "2024/03/05 14:07:09.042|00001A2C|Verbose    |Notifications::OrvikWmiEvents::"
                                     "COrvikWmiEvents::ProcessSmartAdapterEvent|nEventID: 7, callback: text\r\n";

// A file of the benchmark's own, beside the log.
std::wstring BesideLog(const wchar_t* ending)
{
    const std::wstring path = LogFilePath();
    return path.substr(0, path.rfind(L'.')) + ending;
}

void MakeFile(const std::wstring& path)
{
    const UniqueHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    WriteFile(file.get(), g_bytes.data(), static_cast<DWORD>(g_bytes.size()), &written, nullptr);
}

std::wstring Numbered(int number)
{
    return BesideLog(L"Rotated_000") + std::to_wstring(number) + L".log";
}

std::wstring Temporary(int number)
{
    return BesideLog(L"Rotated") + std::to_wstring(number) + L".TMP";
}

const std::wstring& RotatedPath()
{
    static const std::wstring path = BesideLog(L"Rotated.log");
    return path;
}

struct Names
{
    std::wstring m_strPattern = BesideLog(L"Rotated_*.log");
    std::wstring m_strNumbered[10];
    std::wstring m_strTemporary[10];

    Names()
    {
        for (int i = 1; i < 10; ++i)
        {
            m_strNumbered[i] = Numbered(i);
            m_strTemporary[i] = Temporary(i);
        }
    }
};
} // namespace

void FileSubjects::DirectRecord(std::size_t times)
{
    static CLogger& logger = LoggerToFile(false);
    for (std::size_t i = 0; i < times; ++i)
        LogOne(logger, i);
}

void FileSubjects::BareCycle(std::size_t times)
{
    static const std::wstring path = BesideLog(L"Bare.log");
    static const UniqueHandle mutex(CreateMutexW(nullptr, FALSE, LogMutexName(path).c_str()));
    for (std::size_t i = 0; i < times; ++i)
    {
        WaitForSingleObject(mutex.get(), INFINITE);
        UniqueFile file;
        _wfopen_s(ReceiveInto(file), path.c_str(), L"a+,ccs=UTF-8");
        std::fputws(g_line, file.get());
        file.reset();
        ReleaseMutex(mutex.get());
    }
}

void FileSubjects::WindowsCycle(std::size_t times)
{
    static const std::wstring path = BesideLog(L"Floor.log");
    for (std::size_t i = 0; i < times; ++i)
    {
        const UniqueHandle file(
            CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr));
        DWORD written = 0;
        WriteFile(file.get(), g_bytes.data(), static_cast<DWORD>(g_bytes.size()), &written, nullptr);
    }
}

void FileSubjects::MakeOlderFiles()
{
    MakeFile(RotatedPath());
    for (int i = 9; i > 0; --i)
    {
        MakeFile(Numbered(i));
        Sleep(1); // each its own time
    }
}

void FileSubjects::Rotation(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
    {
        const std::wstring newest = MoveOlderLogFilesUp(RotatedPath());
        MoveFileW(RotatedPath().c_str(), newest.c_str());
        MakeFile(RotatedPath());
    }
}

void FileSubjects::BareRotation(std::size_t times)
{
    static const Names names;
    for (std::size_t i = 0; i < times; ++i)
    {
        WIN32_FIND_DATAW found;
        {
            const UniqueFindHandle search(FindFirstFileW(names.m_strPattern.c_str(), &found));
            while (FindNextFileW(search.get(), &found))
            {
            }
        }
        DeleteFileW(names.m_strNumbered[9].c_str());
        for (int n = 8; n > 0; --n)
        {
            DeleteFileW(names.m_strTemporary[n].c_str());
            MoveFileW(names.m_strNumbered[n].c_str(), names.m_strTemporary[n].c_str());
        }
        for (int n = 8; n > 0; --n)
            MoveFileW(names.m_strTemporary[n].c_str(), names.m_strNumbered[n + 1].c_str());
        MoveFileW(RotatedPath().c_str(), names.m_strNumbered[1].c_str());
        MakeFile(RotatedPath());
    }
}

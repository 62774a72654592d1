#include "shared/LogFile.h"

#include "shared/LogFilePath.h"
#include "shared/LogFileRotation.h"
#include "shared/LoggingPolicy.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace Orvik::Shared
{
namespace
{
constexpr DWORD g_dwDefaultSize = 2048; // in units of 1,024 bytes
constexpr DWORD g_dwSizeUnit = 1024;
// The size is looked at when the counter has passed so many per unit; halved then, it takes half as many to the next
// look.
constexpr DWORD g_dwRecordsPerUnit = 10;

struct Mark
{
    std::size_t m_nPosition;
    wchar_t m_character;
};
// "2024/03/05 14:07:09.042|"
constexpr Mark g_marks[] = {{4, L'/'}, {7, L'/'}, {10, L' '}, {13, L':'}, {16, L':'}, {19, L'.'}, {23, L'|'}};
constexpr std::size_t g_startLength = 24;

bool Wait(HANDLE mutex) noexcept
{
    DWORD result = WaitForSingleObject(mutex, INFINITE);
    if (result == WAIT_ABANDONED)
    {
        // It is ours already: held twice, it would not be free again after one release.
        ReleaseMutex(mutex);
        result = WaitForSingleObject(mutex, INFINITE);
    }
    if (result == WAIT_ABANDONED)
        ReleaseMutex(mutex);
    return result == WAIT_OBJECT_0;
}
} // namespace

CLogFile::CLogFile(const LoggingPolicy& policy)
    : m_strPath(LogFilePath()), m_dwMaxSize(policy.Number(L"MaxLogSize", 1).value_or(g_dwDefaultSize)),
      // The very first record looks at the size. Large sizes wrap, as all sizes here do.
      m_nWriteCounter(static_cast<int>(m_dwMaxSize * g_dwRecordsPerUnit + 1))
{
    if (HasPath())
        m_hMutex.reset(CreateMutexW(nullptr, FALSE, LogMutexName(m_strPath).c_str()));
}

bool CLogFile::OpenAndLock() noexcept
{
    if (!m_hMutex || !Wait(m_hMutex.get()))
        return false;
    OpenStream();
    if (m_pStream)
        return true;
    ReleaseMutex(m_hMutex.get());
    return false;
}

void CLogFile::CloseAndUnlock() noexcept
{
    // The stream is gone where a rotation could not open it again; the mutex is held all the same.
    m_pStream.reset();
    ReleaseMutex(m_hMutex.get());
}

void CLogFile::OpenStream() noexcept
{
    m_pStream.reset();
    _wfopen_s(ReceiveInto(m_pStream), m_strPath.c_str(), L"a+,ccs=UTF-8");
}

void CLogFile::MoveForeignFileAside()
{
    wchar_t start[g_startLength + 1]{};
    std::FILE* const stream = m_pStream.get();
    const bool isEmpty =
        std::fgetws(start, static_cast<int>(std::size(start)), stream) == nullptr && std::feof(stream) != 0;
    // What is written behind a read is lost otherwise.
    static_cast<void>(std::fseek(stream, 0, SEEK_END));
    const bool isLog = std::ranges::all_of(g_marks, [&start](const Mark& mark)
                                           { return start[mark.m_nPosition] == mark.m_character; });
    if (!isEmpty && !isLog)
        RotateIfNeeded(true);
}

void CLogFile::WriteRecord(const COrvikLogListener::LogData& data)
{
    if (!m_pStream)
        return;
    const auto counter = static_cast<DWORD>(m_nWriteCounter);
    m_nWriteCounter = static_cast<int>(counter + 1);
    // Never begun anew, only halved, deliberately: that paces the looks at the size.
    if (counter > m_dwMaxSize * g_dwRecordsPerUnit)
        m_nWriteCounter = RotateIfNeeded(false) ? 0 : m_nWriteCounter / 2;
    if (!m_pStream)
        return;
    const std::wstring& line = data.GetLine();
    // A full disk loses the record; nobody is told.
    static_cast<void>(std::fwrite(line.data(), sizeof(wchar_t), line.size(), m_pStream.get()));
    static_cast<void>(std::fputwc(L'\n', m_pStream.get()));
}

// With the stream open. Always false.
bool CLogFile::RotateIfNeeded(bool force)
{
    WIN32_FILE_ATTRIBUTE_DATA file{};
    if (!GetFileAttributesExW(m_strPath.c_str(), GetFileExInfoStandard, &file))
        return false;
    const bool isTooLarge = file.nFileSizeHigh != 0 || file.nFileSizeLow > m_dwMaxSize * g_dwSizeUnit;
    if (!force && !isTooLarge)
        return false;
    if (const std::wstring newest = MoveOlderLogFilesUp(m_strPath); !newest.empty())
    {
        m_pStream.reset();
        MoveFileW(m_strPath.c_str(), newest.c_str());
        OpenStream();
    }
    return false;
}
} // namespace Orvik::Shared

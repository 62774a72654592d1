#include "simulator/machine/EventLogFile.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Simulator
{
namespace
{
using Orvik::Shared::UniqueHandle;

constexpr wchar_t g_mutexName[] = L"OrvikSimulatorEventLog";

HANDLE OpenFile(const std::filesystem::path& path, DWORD& error)
{
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    error = file == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
    return file == INVALID_HANDLE_VALUE ? nullptr : file;
}

// Held by one program at a time; one that was killed meanwhile has given it back.
class MutexLock
{
public:
    explicit MutexLock(HANDLE mutex) : m_hMutex(mutex) { WaitForSingleObject(mutex, INFINITE); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() { ReleaseMutex(m_hMutex); }

private:
    HANDLE m_hMutex;
};
} // namespace

std::filesystem::path EventLogPath(const std::filesystem::path& folder)
{
    return folder.empty() ? folder : folder / "event-log.jsonl";
}

EventLogFile::EventLogFile(const std::filesystem::path& folder)
    : m_dwOpenError(ERROR_SUCCESS), m_hFile(OpenFile(EventLogPath(folder), m_dwOpenError)),
      m_hMutex(CreateMutexW(nullptr, FALSE, g_mutexName))
{
}

DWORD EventLogFile::Append(const EventLogRecord& record)
{
    if (!m_hFile)
        return m_dwOpenError;
    std::string line = ToJson(record).dump() + '\n';
    const MutexLock lock(m_hMutex.get());
    if (EndsWithinLine())
        line.insert(line.begin(), '\n');
    SetFilePointer(m_hFile.get(), 0, nullptr, FILE_END);
    DWORD written = 0;
    if (!WriteFile(m_hFile.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr))
        return GetLastError();
    return written == line.size() ? ERROR_SUCCESS : ERROR_DISK_FULL;
}

bool EventLogFile::EndsWithinLine() const
{
    char last = '\n';
    DWORD read = 0;
    // Of an empty file there is no last character to go to.
    if (SetFilePointer(m_hFile.get(), -1, nullptr, FILE_END) != INVALID_SET_FILE_POINTER)
        ReadFile(m_hFile.get(), &last, 1, &read, nullptr);
    return last != '\n';
}

void EventLogLines::Update()
{
    std::ifstream file(m_path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(m_strContent.size()));
    if (!file)
        return;
    m_strContent.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    for (std::size_t end = m_strContent.find('\n', m_nLineBegin); end != std::string::npos;
         end = m_strContent.find('\n', m_nLineBegin))
    {
        m_lstLines.push_back({m_nLineBegin, end});
        m_nLineBegin = end + 1;
    }
}

std::optional<EventLogRecord> EventLogLines::At(std::size_t index) const
{
    const Line& line = m_lstLines.at(index);
    try
    {
        return RecordFromJson(nlohmann::json::parse(m_strContent.begin() + static_cast<std::ptrdiff_t>(line.m_nBegin),
                                                    m_strContent.begin() + static_cast<std::ptrdiff_t>(line.m_nEnd)));
    }
    catch (const nlohmann::json::exception&)
    {
        return std::nullopt;
    }
    catch (const std::invalid_argument&)
    {
        return std::nullopt;
    }
}

std::vector<EventLogRecord> ReadEventLogOf(const std::filesystem::path& folder)
{
    EventLogLines lines(folder);
    lines.Update();
    std::vector<EventLogRecord> records;
    for (std::size_t i = 0; i < lines.Count(); ++i)
    {
        if (std::optional<EventLogRecord> record = lines.At(i))
            records.push_back(*std::move(record));
    }
    return records;
}
} // namespace Simulator

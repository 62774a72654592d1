#pragma once

#include "shared/LogData.h"
#include "shared/OwnerTypes.h"

#include <string>

namespace Orvik::Shared
{
class LoggingPolicy;

// The log file of this user and program. Any number of processes and threads append to it: who writes holds a mutex
// that the machine knows by the file's path, and has the file open only meanwhile. No failure is reported.
class CLogFile
{
public:
    // Finds path and mutex, and the largest size in policy: "MaxLogSize" in units of 1,024 bytes, 2048 where it is
    // missing or 0.
    explicit CLogFile(const LoggingPolicy& policy);
    CLogFile(const CLogFile&) = delete;
    CLogFile& operator=(const CLogFile&) = delete;
    ~CLogFile() = default;

    // Without one nothing is ever written.
    [[nodiscard]] bool HasPath() const noexcept { return !m_strPath.empty(); }

    // Waits for the mutex, without a limit, and opens the file; made with a byte-order mark where it is missing. False:
    // neither is held. True: CloseAndUnlock follows on the same thread.
    [[nodiscard]] bool OpenAndLock() noexcept;
    void CloseAndUnlock() noexcept;

    // All that follow are called between these two.

    // Moves a file away that does not begin as a record does; an empty one stays. Raises std::bad_alloc.
    void MoveForeignFileAside();
    // Appends the line of the record; from time to time checks the size first. Raises std::bad_alloc.
    void WriteRecord(const COrvikLogListener::LogData& data);

private:
    void OpenStream() noexcept;
    bool RotateIfNeeded(bool force);

    const std::wstring m_strPath;
    const DWORD m_dwMaxSize; // in units of 1,024 bytes
    int m_nWriteCounter;
    UniqueHandle m_hMutex;
    UniqueFile m_pStream;
};

// The length of a time in which the file is open and locked by this thread.
class LogFileClosing
{
public:
    explicit LogFileClosing(CLogFile& file) noexcept : m_file(file) {}
    LogFileClosing(const LogFileClosing&) = delete;
    LogFileClosing& operator=(const LogFileClosing&) = delete;
    ~LogFileClosing() { m_file.CloseAndUnlock(); }

private:
    CLogFile& m_file;
};
} // namespace Orvik::Shared

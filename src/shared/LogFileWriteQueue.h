#pragma once

#include "shared/LogDataList.h"
#include "shared/LogFile.h"
#include "shared/OwnerTypes.h"

#include <atomic>
#include <memory>

namespace Orvik::Shared
{
// Hands records to a thread that writes them to the log file, in batches: at most one at a time, started by a record
// and ended by an empty queue. Any thread.
class CLogFileWriteQueue : public std::enable_shared_from_this<CLogFileWriteQueue>
{
public:
    explicit CLogFileWriteQueue(std::shared_ptr<CLogFile> file) noexcept;

    // Queues a copy of the record; does not wait for the file. Records of a thread that cannot open the file, and those
    // for which no thread could be started, wait for the next Append. Raises std::bad_alloc.
    void Append(const COrvikLogListener::LogData& data);
    // Lets the thread write what is queued for about a second at most, then discards the rest, what the thread has
    // taken included.
    void Finish() noexcept;

private:
    static unsigned __stdcall ThreadRoutine(void* queue) noexcept;
    void StartWriter() noexcept;
    void WriteBatch() noexcept;
    void WriteOldest(const CLogDataList& records) noexcept;
    [[nodiscard]] bool TakeAll(CLogDataList& records) noexcept;
    void WriterHasEnded() noexcept;
    [[nodiscard]] UniqueHandle WriterToWaitFor() noexcept;

    const std::shared_ptr<CLogFile> m_pFile;
    // Guards all that follow. May be taken while the file is locked, never the other way round.
    CriticalSection m_cs;
    CLogDataList m_lstRecords;
    bool m_bRunning = false;
    UniqueHandle m_hWriter; // of the last thread, also when that has ended
    // What the writer has taken is lost too; it looks without the lock.
    std::atomic<bool> m_bDiscards{false};
};
} // namespace Orvik::Shared

#include "shared/LogFileWriteQueue.h"

#include <process.h>

#include <exception>
#include <new>

namespace Orvik::Shared
{
namespace
{
// How long a process end waits, twice at most; milliseconds.
constexpr int g_rounds = 2;
constexpr DWORD g_dwPause = 100;
constexpr DWORD g_dwWait = 500;

// What keeps the queue alive for its thread.
using QueueOfThread = std::shared_ptr<CLogFileWriteQueue>;
} // namespace

CLogFileWriteQueue::CLogFileWriteQueue(std::shared_ptr<CLogFile> file) noexcept : m_pFile(std::move(file)) {}

void CLogFileWriteQueue::Append(const COrvikLogListener::LogData& data)
{
    const CriticalSectionLock lock(m_cs);
    m_lstRecords.PushBack(data);
    if (!m_bRunning)
        StartWriter();
}

void CLogFileWriteQueue::StartWriter() noexcept
{
    m_hWriter.reset();
    std::unique_ptr<QueueOfThread> queue(new (std::nothrow) QueueOfThread(shared_from_this()));
    if (queue)
        m_hWriter.reset(reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, &ThreadRoutine, queue.get(), 0, nullptr)));
    m_bRunning = m_hWriter != nullptr;
    if (m_bRunning)
        static_cast<void>(queue.release());
}

unsigned __stdcall CLogFileWriteQueue::ThreadRoutine(void* queue) noexcept
{
    const std::unique_ptr<QueueOfThread> own(static_cast<QueueOfThread*>(queue));
    (*own)->WriteBatch();
    return 0;
}

void CLogFileWriteQueue::WriteBatch() noexcept
{
    if (!m_pFile->OpenAndLock())
    {
        WriterHasEnded();
        return;
    }
    const LogFileClosing closing(*m_pFile);
    // All at once: who logs meets the writer at the lock once for a batch, not for each record.
    for (CLogDataList records; TakeAll(records); records.Clear())
    {
        for (; !records.IsEmpty() && !m_bDiscards; records.PopFront())
            WriteOldest(records);
    }
}

void CLogFileWriteQueue::WriteOldest(const CLogDataList& records) noexcept
{
    try
    {
        m_pFile->WriteRecord(records.Front());
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch)
    {
        // Out of memory: this record is lost, those behind it are not.
    }
}

// False, and the next record starts another thread, when there is none.
bool CLogFileWriteQueue::TakeAll(CLogDataList& records) noexcept
{
    const CriticalSectionLock lock(m_cs);
    m_bRunning = !m_lstRecords.IsEmpty();
    m_bDiscards = false;
    records.TakeAll(m_lstRecords);
    return m_bRunning;
}

void CLogFileWriteQueue::WriterHasEnded() noexcept
{
    const CriticalSectionLock lock(m_cs);
    m_bRunning = false;
}

void CLogFileWriteQueue::Finish() noexcept
{
    for (int round = 0; round < g_rounds; ++round)
    {
        const UniqueHandle writer = WriterToWaitFor();
        if (!writer || WaitForSingleObject(writer.get(), g_dwWait) != WAIT_TIMEOUT)
            break;
    }
    const CriticalSectionLock lock(m_cs);
    m_lstRecords.Clear();
    m_bDiscards = true;
    m_hWriter.reset();
}

// The last thread, also one that has taken the last record: the stream that it closes at its end still holds lines.
UniqueHandle CLogFileWriteQueue::WriterToWaitFor() noexcept
{
    const CriticalSectionLock lock(m_cs);
    if (m_bRunning && !m_lstRecords.IsEmpty())
        Sleep(g_dwPause);
    // A handle of our own: a late record closes the other one when it starts the next thread.
    UniqueHandle writer;
    if (m_hWriter)
        DuplicateHandle(GetCurrentProcess(), m_hWriter.get(), GetCurrentProcess(), ReceiveInto(writer), SYNCHRONIZE,
                        FALSE, 0);
    return writer;
}
} // namespace Orvik::Shared

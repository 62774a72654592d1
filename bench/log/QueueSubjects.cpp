#include "bench/log/QueueSubjects.h"

#include "bench/log/FileLoggers.h"
#include "shared/LogFilePath.h"
#include "shared/LogFileWriteQueue.h"
#include "shared/LoggingPolicy.h"
#include "shared/OwnerTypes.h"

#include <windows.h>

#include <psapi.h>

#include <chrono>
#include <memory>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using FileSubjects::LogOne;
using LogData = COrvikLogListener::LogData;

const LogData& Record()
{
    static const LogData record(Level::Verbose, FileSubjects::RecordName, L"nEventID: 7, callback: text");
    return record;
}

CLogger& QueuedLogger()
{
    static CLogger& logger = FileSubjects::LoggerToFile(true);
    return logger;
}

CLogFileWriteQueue& Queue()
{
    static auto& queue = *new auto(std::make_shared<CLogFileWriteQueue>(std::make_shared<CLogFile>(LoggingPolicy())));
    return *queue;
}

HANDLE FileMutex()
{
    static const UniqueHandle mutex(CreateMutexW(nullptr, FALSE, LogMutexName(LogFilePath()).c_str()));
    return mutex.get();
}

std::vector<LogData>& Copies()
{
    static std::vector<LogData> copies;
    return copies;
}

std::size_t WorkingSet()
{
    PROCESS_MEMORY_COUNTERS counters{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.WorkingSetSize;
}
} // namespace

void QueueSubjects::HoldFile()
{
    WaitForSingleObject(FileMutex(), INFINITE);
    // Their writers are there from now on.
    LogOne(QueuedLogger(), 0);
    Queue().Append(Record());
}

void QueueSubjects::LetWrite()
{
    ReleaseMutex(FileMutex());
    // Whoever waits longest comes first: one writer, the other one, this thread.
    for (int i = 0; i < 3; ++i)
    {
        WaitForSingleObject(FileMutex(), INFINITE);
        ReleaseMutex(FileMutex());
    }
}

void QueueSubjects::QueuedRecord(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
        LogOne(QueuedLogger(), i);
}

void QueueSubjects::QueuedAppend(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
        Queue().Append(Record());
}

void QueueSubjects::LockAndCopy(std::size_t times)
{
    static CriticalSection section;
    Copies().reserve(times);
    for (std::size_t i = 0; i < times; ++i)
    {
        const CriticalSectionLock lock(section);
        Copies().push_back(Record());
    }
}

void QueueSubjects::DropCopies()
{
    Copies().clear();
}

void QueueSubjects::FirstRecord(std::size_t times)
{
    for (std::size_t i = 0; i < times; ++i)
    {
        Queue().Append(Record());
        LetWrite();
    }
}

double QueueSubjects::SecondsOfBatch(std::size_t records)
{
    const auto start = std::chrono::steady_clock::now();
    QueuedRecord(records);
    // The writer has the file until the queue is empty.
    WaitForSingleObject(FileMutex(), INFINITE);
    const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - start;
    ReleaseMutex(FileMutex());
    return duration.count();
}

double QueueSubjects::MemoryOfBacklog(std::size_t records)
{
    HoldFile();
    const std::size_t before = WorkingSet();
    QueuedAppend(records);
    const auto bytes = static_cast<double>(WorkingSet() - before);
    LetWrite();
    const std::size_t texts = Record().FunctionName().size() + 1 + (Record().Message().size() + 1) * sizeof(wchar_t);
    return bytes / static_cast<double>(records * (sizeof(LogData) + texts));
}

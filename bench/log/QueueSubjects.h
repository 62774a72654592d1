#pragma once

#include <cstddef>

// Queued writes of the log file. Each subject does its work that many times.
namespace QueueSubjects
{
// Keeps the file from the writer, which is there and waits for it, so that the calling thread alone is measured.
void HoldFile();
// Gives the file back and waits until what is queued has come into it.
void LetWrite();

// A record of the logger, from its format to the queue.
void QueuedRecord(std::size_t times);
// From the finished record to the queue.
void QueuedAppend(std::size_t times);
// What that takes at least: a critical section and a copy of the record.
void LockAndCopy(std::size_t times);
void DropCopies();

// The first record of a batch: it starts the writer.
void FirstRecord(std::size_t times);

// spdlog's asynchronous logger with a file.
void SpdlogRecord(std::size_t times);
void SpdlogDrain();

// Seconds from the first of that many records to the last one on disk.
[[nodiscard]] double SecondsOfBatch(std::size_t records);
[[nodiscard]] double SecondsOfSpdlogBatch(std::size_t records);

// Memory of that many queued records, each divided by the bytes of its fields and texts.
[[nodiscard]] double MemoryOfBacklog(std::size_t records);
} // namespace QueueSubjects

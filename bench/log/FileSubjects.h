#pragma once

#include <cstddef>

// What the benchmark of the log file measures. Each does its work that many times.
namespace FileSubjects
{
// A record of the logger that is written at once.
void DirectRecord(std::size_t times);
// The same cycle by hand: wait for the mutex, open, write one line, close, release.
void BareCycle(std::size_t times);
// What Windows takes at least: open, write and close, without the C runtime and without a mutex.
void WindowsCycle(std::size_t times);

// With nine older files: nine files are renamed, one is deleted, a new one is begun.
void Rotation(std::size_t times);
void BareRotation(std::size_t times);
// Makes the older files, before one of these.
void MakeOlderFiles();
} // namespace FileSubjects

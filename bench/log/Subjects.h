#pragma once

#include <cstddef>

// What the benchmark of the log measures. Each does its work that many times.
namespace LogSubjects
{
void LoadCompareBranch(std::size_t times);
void DisabledRecord(std::size_t times);
void DisabledTraceScope(std::size_t times);
void DisabledSpdlogCall(std::size_t times);
void DisabledSpdlogGlobalCall(std::size_t times);

void EnabledRecord(std::size_t times);
void LocalTime(std::size_t times);
void MessageFormat(std::size_t times);
void CopyOfNames(std::size_t times);
// With the event listener; the event log itself is a function that does nothing.
void EventRecord(std::size_t times);

void PrefixByHand(std::size_t times);
void PrefixByPrintf(std::size_t times);

// Calls of operator new during that many records.
[[nodiscard]] std::size_t AllocationsOfDisabledRecords(std::size_t times);
[[nodiscard]] std::size_t AllocationsOfEnabledRecords(std::size_t times);
} // namespace LogSubjects

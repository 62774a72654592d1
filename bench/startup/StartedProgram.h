#pragma once

#include <windows.h>

#include <cstddef>

// What one start of a program cost until its message loop answered.
struct StartCost
{
    double m_milliseconds = 0;
    double m_peakMebibytes = 0;
};

// Starts the program, waits until its window of that class answers a message, reads the peak of its working set, closes
// the window and waits for the end. Throws std::runtime_error with a sentence when the program does not get that far
// within half a minute.
[[nodiscard]] StartCost MeasureStart(const wchar_t* path, const wchar_t* windowClass);

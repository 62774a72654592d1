#pragma once

namespace CopyTimes
{
// Milliseconds of one copy of an audit log, from the parsed text to the last record, which the event log drops.
struct Figures
{
    double m_component; // in MSXML, whose lists find an item by walking from the first
    double m_known;     // in everything else when all entries stand in the event log
    double m_new;       // the same when none does
};

// Medians of several rounds. The calling thread has initialised COM. Throws when
// a call fails.
[[nodiscard]] Figures Measure(int entries);
} // namespace CopyTimes

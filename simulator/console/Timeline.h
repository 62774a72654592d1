#pragma once

#include "simulator/console/EntryLog.h"

namespace Simulator
{
// Prints what a user, an administrator or Windows would notice: one line per thing with the time, who, and what.
class Timeline
{
public:
    // showLog: every record of the agent's diagnostic log becomes a line too.
    explicit Timeline(bool showLog) : m_bShowLog(showLog) {}

    // Prints the line of an entry, if it is one that somebody would notice.
    void Show(const Entry& entry) const;
    // A line without a time: headings and results.
    static void Print(const std::string& text);

private:
    bool m_bShowLog;
};
} // namespace Simulator

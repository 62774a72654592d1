#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <string>
#include <vector>

// The outlets that listeners write to, seen from outside: one list of what arrived where, in order. One at a time.
class Outlets
{
public:
    Outlets();
    Outlets(const Outlets&) = delete;
    Outlets& operator=(const Outlets&) = delete;
    ~Outlets();

    // "event", "debug", "console" for each record since the last call, in order; all of one record that went to
    // several.
    [[nodiscard]] std::vector<std::string> Take();
    // The texts handed to the debugger.
    [[nodiscard]] const std::vector<std::wstring>& DebugTexts() const;
    // What was printed, as bytes.
    [[nodiscard]] std::string Printed();
    // For the other outlets, before they take a record: the console cannot tell when it was printed to.
    void NotePrinted();

private:
    Simulator::Redirection<decltype(ReportEventW)> m_reportEvent;
    Simulator::Redirection<decltype(OutputDebugStringW)> m_debugString;
    int m_nRealOutput;
    std::wstring m_strPrintFile;
};

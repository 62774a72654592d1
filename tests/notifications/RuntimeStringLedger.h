#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <winstring.h>

#include <cstddef>

// Counts the strings of the Windows Runtime that the program made and did not delete since the object was made. Stands
// in front of whoever answered the look-ups before, ToastRedirections for instance. One at a time; any thread.
class RuntimeStringLedger
{
public:
    RuntimeStringLedger();
    RuntimeStringLedger(const RuntimeStringLedger&) = delete;
    RuntimeStringLedger& operator=(const RuntimeStringLedger&) = delete;

    [[nodiscard]] static std::size_t Live();
    // All deletions so far: proof that the ledger saw something.
    [[nodiscard]] static std::size_t Deletions();

private:
    Simulator::Redirection<decltype(WindowsCreateString)> m_create;
    Simulator::Redirection<decltype(WindowsDeleteString)> m_delete;
};

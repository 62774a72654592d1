#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <objbase.h>
#include <roapi.h>

#include <functional>
#include <set>
#include <string>

namespace Tests
{
// The simulated machine takes memory itself. This small one of functions does not, for tests in which allocations fail:
// there are platform commands (StaticCommand), the notification component and Windows' own MSXML, no other class.
// Toasts end where they begin and are counted. One at a time.
class SmallMachine
{
public:
    // machineId: what "Platform.MachineID" answers; a literal.
    explicit SmallMachine(const wchar_t* machineId = L"8A11");
    SmallMachine(const SmallMachine&) = delete;
    SmallMachine& operator=(const SmallMachine&) = delete;

    // The firmware's audit log from now on; it is not copied.
    static void SetAuditLog(const wchar_t* xml);
    // Toasts since the last question.
    [[nodiscard]] static unsigned TakeToasts();

private:
    Simulator::Redirection<decltype(CoCreateInstance)> m_create;
    Simulator::Redirection<decltype(CLSIDFromProgID)> m_progId;
    Simulator::Redirection<decltype(OleRun)> m_run;
    Simulator::Redirection<decltype(RoGetActivationFactory)> m_toast;
};

// Makes each allocation of the call fail in turn; no exception may come out. The texts of the records that were written
// so, traces left out. afterEach: runs after each failed call, while its log is there.
std::set<std::wstring> SweepAllocations(const std::function<void()>& call,
                                        const std::function<void()>& afterEach = nullptr);
} // namespace Tests

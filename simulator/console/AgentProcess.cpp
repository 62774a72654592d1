#include "simulator/console/AgentProcess.h"

#include "simulator/console/Failure.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/machine/Protocol.h"

#include <tlhelp32.h>

namespace Simulator
{
namespace
{
using Orvik::Shared::UniqueHandle;
using Protocol::StartResult;

constexpr DWORD g_startLimit = 60'000; // ms; a loaded machine is slow, a start that hangs is not

const char* Explanation(DWORD result)
{
    switch (static_cast<StartResult>(result))
    {
    case StartResult::NotPrepared:
        return "this registry is not marked as a simulated machine; run \"orvik-sim prepare\" in a test prefix";
    case StartResult::BadFacts:
        return "the machine could not read its facts";
    case StartResult::NoChannel:
        return "the machine could not reach the console";
    case StartResult::NoApartment:
        return "the machine could not make WMI's apartment";
    default:
        return "the machine did not start";
    }
}

// A job of the console's: agents end with it even when it is killed.
HANDLE AgentsJob()
{
    static const HANDLE job = []
    {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
        return made;
    }();
    return job;
}

// Where the machine's start function lies behind the beginning of the DLL, which stays mapped for the next agent.
std::uintptr_t StartFunctionOffset(const std::filesystem::path& machine)
{
    const HMODULE module = LoadLibraryExW(machine.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    if (module == nullptr)
        throw UsageError(Narrow(machine.native()) + ": " + WindowsFailure("LoadLibraryExW", GetLastError()));
    const FARPROC function = GetProcAddress(module, Protocol::StartFunctionName);
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(function) - reinterpret_cast<std::uintptr_t>(module);
    if (function == nullptr)
        throw UsageError(Narrow(machine.native()) + " is not the simulated machine");
    return offset;
}
} // namespace

AgentProcess::AgentProcess(const std::filesystem::path& program, const std::filesystem::path& machine,
                           const EnvironmentChanges& environment)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    std::wstring commandLine = L"\"" + program.native() + L"\"";
    std::wstring block = EnvironmentBlock(environment);
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                        CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT, block.data(), nullptr, &startup, &process))
        throw UsageError(Narrow(program.native()) + ": " + WindowsFailure("CreateProcessW", GetLastError()));
    m_dwId = process.dwProcessId;
    m_hProcess.reset(process.hProcess);
    m_hMainThread.reset(process.hThread);
    AssignProcessToJobObject(AgentsJob(), m_hProcess.get());
    try
    {
        LoadMachine(machine);
        const std::uintptr_t start = MachineBase() + StartFunctionOffset(machine);
        if (const DWORD result = RunRemotely(reinterpret_cast<void*>(start), nullptr); result != 0)
            throw UsageError(Explanation(result));
    }
    catch (...)
    {
        Terminate();
        throw;
    }
}

AgentProcess::~AgentProcess()
{
    Terminate();
}

void AgentProcess::Resume()
{
    ResumeThread(m_hMainThread.get());
}

std::optional<DWORD> AgentProcess::WaitForExit(std::chrono::milliseconds limit)
{
    if (WaitForSingleObject(m_hProcess.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0)
        return std::nullopt;
    DWORD code = 0;
    GetExitCodeProcess(m_hProcess.get(), &code);
    return code;
}

void AgentProcess::Terminate()
{
    if (WaitForExit(std::chrono::milliseconds(0)))
        return;
    TerminateProcess(m_hProcess.get(), ERROR_PROCESS_ABORTED);
    WaitForSingleObject(m_hProcess.get(), g_startLimit);
}

void AgentProcess::LoadMachine(const std::filesystem::path& machine)
{
    const std::size_t size = (machine.native().size() + 1) * sizeof(wchar_t);
    void* path = VirtualAllocEx(m_hProcess.get(), nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (path == nullptr || !WriteProcessMemory(m_hProcess.get(), path, machine.c_str(), size, nullptr))
        throw UsageError(WindowsFailure("WriteProcessMemory", GetLastError()));
    // kernel32 lies at the same address in every process of a session.
    const FARPROC loadLibrary = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW");
    if (RunRemotely(reinterpret_cast<void*>(loadLibrary), path) == 0)
        throw UsageError("the agent's process cannot load " + Narrow(machine.native()));
    VirtualFreeEx(m_hProcess.get(), path, 0, MEM_RELEASE);
}

DWORD AgentProcess::RunRemotely(void* function, void* argument)
{
    const UniqueHandle thread(CreateRemoteThread(
        m_hProcess.get(), nullptr, 0, reinterpret_cast<LPTHREAD_START_ROUTINE>(function), argument, 0, nullptr));
    if (!thread)
        throw UsageError(WindowsFailure("CreateRemoteThread", GetLastError()));
    if (WaitForSingleObject(thread.get(), g_startLimit) != WAIT_OBJECT_0)
        throw UsageError("the machine does not start within a minute");
    DWORD result = 0;
    GetExitCodeThread(thread.get(), &result);
    return result;
}

std::uintptr_t AgentProcess::MachineBase() const
{
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, m_dwId));
    MODULEENTRY32W module{};
    module.dwSize = sizeof(module);
    for (BOOL found = Module32FirstW(snapshot.get(), &module); found; found = Module32NextW(snapshot.get(), &module))
    {
        if (lstrcmpiW(module.szModule, Protocol::MachineFileName) == 0)
            return reinterpret_cast<std::uintptr_t>(module.modBaseAddr);
    }
    throw UsageError("the machine is not among the modules of the agent's process");
}
} // namespace Simulator

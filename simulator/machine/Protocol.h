#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// What the console and the machine inside the agent's process agree on.
namespace Simulator::Protocol
{
// Environment variables of the agent's process.
inline constexpr wchar_t ChannelVariable[] = L"ORVIK_SIM_CHANNEL"; // name from which the pipe names are made
inline constexpr wchar_t FactsVariable[] = L"ORVIK_SIM_FACTS";     // JSON file with the facts at start
inline constexpr wchar_t StoreVariable[] = L"ORVIK_SIM_STORE";     // folder of the event-log store

inline constexpr wchar_t MachineFileName[] = L"orvik_machine.dll";

// Exported by the machine; a remote thread runs it once before the agent's own code. Its exit code is a StartResult.
inline constexpr char StartFunctionName[] = "StartSimulatedMachine";

enum class StartResult : DWORD
{
    Started = 0,
    NotPrepared = 1, // the marker is missing: this may be somebody's real machine
    BadFacts = 2,    // the facts file cannot be read
    NoChannel = 3,   // the pipes cannot be opened
    NoApartment = 4  // the unsecured apartment could not be made
};

// Two pipes, JSON lines in UTF-8: commands into the machine, journal entries out of it.
// A command is {"id": number, "command": name, ...}; its answer is a journal entry of kind "machine" and subject
// "answer" with {"id": number, "ok": bool, "error": text} and what the command gives back.
[[nodiscard]] std::wstring CommandPipeName(std::wstring_view channel);
[[nodiscard]] std::wstring JournalPipeName(std::wstring_view channel);

// The marker that says: this registry belongs to a simulated machine. Doubles are never loaded without it.
[[nodiscard]] bool IsPreparedMachine();
// Win32 error code.
[[nodiscard]] LSTATUS MarkPreparedMachine();
} // namespace Simulator::Protocol

#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator
{
// One thing that happened in the simulated machine. Kinds in use: "call" (a double or a redirected function was called;
// subject is the call's name), "com" (the same for what COM calls on the product's behalf: QueryInterface, class
// factories), "reference" (AddRef or Release of a double), "toast" (shown, clicked, dismissed, timed-out, failed),
// "dialog" (opened, answered, closed), "thread" (started and ended, those that the agent starts itself),
// "event-log" (a record was written), "event-log-refusal" (one was not), "program" (a program was started), "wmi"
// (subscribed, cancelled, delivered), "clock", "machine".
struct JournalEntry
{
    std::uint64_t m_nSequence;    // 1, 2, 3 ... in the order of appending
    std::int64_t m_nMicroseconds; // since the journal was made
    DWORD m_dwThreadId;
    std::string m_strKind;
    std::string m_strSubject;
    nlohmann::json m_details; // an object; texts are UTF-8
};

// Everything that the doubles saw, in order. One per process; any thread may append.
class Journal
{
public:
    static Journal& Instance();

    void Append(std::string_view kind, std::string_view subject, nlohmann::json details = nlohmann::json::object());

    [[nodiscard]] std::vector<JournalEntry> Entries() const;
    // The subjects of all entries of a kind, in order: what a test of call order compares.
    [[nodiscard]] std::vector<std::string> Subjects(std::string_view kind) const;
    void Clear();

    // Called with each new entry on the appending thread, under the journal's lock: it must not append.
    void SetSink(std::function<void(const JournalEntry&)> sink);

private:
    Journal();

    mutable std::mutex m_lock;
    LARGE_INTEGER m_start{};
    LARGE_INTEGER m_frequency{};
    std::uint64_t m_nLast = 0;
    std::vector<JournalEntry> m_lstEntries;
    std::function<void(const JournalEntry&)> m_sink;
};
} // namespace Simulator

#pragma once

#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace Simulator
{
// One journal entry as the console received it, or a remark of the console itself (kind "console").
struct Entry
{
    std::size_t m_nIndex = 0;
    unsigned m_nAgent = 0; // 0: the console itself; else the number of the agent that was started
    double m_seconds = 0;  // since the scenario began
    std::string m_strKind;
    std::string m_strSubject;
    nlohmann::json m_details = nlohmann::json::object();
};

using EntryTest = std::function<bool(const Entry&)>;

// Everything that happened in one scenario, in order of arrival. Any thread; tests and the listener must not call back.
// A test of WaitFor sees later entries on the thread that appends them: whoever waits is woken once, by what it waits
// for.
class EntryLog
{
public:
    using Clock = std::chrono::steady_clock;

    // The listener sees each entry on the thread that appends it, in order.
    explicit EntryLog(std::function<void(const Entry&)> listener) : m_listener(std::move(listener)) {}

    void Append(unsigned agent, std::string kind, std::string subject,
                nlohmann::json details = nlohmann::json::object());

    [[nodiscard]] std::size_t Size() const;
    [[nodiscard]] std::vector<Entry> From(std::size_t first) const;
    // The first entry from an index on that passes; waits for it until the time is over.
    [[nodiscard]] std::optional<Entry> WaitFor(std::size_t first, std::chrono::milliseconds limit,
                                               const EntryTest& test);

private:
    struct Waiter
    {
        const EntryTest& m_test;
        std::optional<std::size_t> m_found;
        std::exception_ptr m_failure;
    };

    void ShowToWaiters(const Entry& entry);

    mutable std::mutex m_lock;
    std::condition_variable m_arrived;
    std::vector<Waiter*> m_lstWaiters;
    std::vector<Entry> m_lstEntries;
    std::function<void(const Entry&)> m_listener;
    Clock::time_point m_begin = Clock::now();
};
} // namespace Simulator

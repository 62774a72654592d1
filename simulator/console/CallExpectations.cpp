#include "simulator/console/Step.h"

#include <thread>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

bool StartsWithOneOf(const std::string& name, const std::vector<std::string>& prefixes)
{
    return prefixes.empty() ||
           std::ranges::any_of(prefixes, [&](const std::string& prefix) { return name.starts_with(prefix); });
}

bool Includes(const nlohmann::json& whole, const nlohmann::json& part)
{
    return std::all_of(part.items().begin(), part.items().end(), [&](const auto& item)
                       { return whole.contains(item.key()) && whole.at(item.key()) == item.value(); });
}

struct Call
{
    std::string m_strName;
    nlohmann::json m_details = nlohmann::json::object(); // some of them, for an expected one

    [[nodiscard]] bool IsMetBy(const Call& made) const
    {
        return made.m_strName == m_strName && Includes(made.m_details, m_details);
    }
};

using Calls = std::vector<Call>;

std::string Listed(const Calls& calls)
{
    std::string text;
    for (const Call& call : calls)
        text += "\n    " + call.m_strName + (call.m_details.empty() ? "" : " " + call.m_details.dump());
    return text.empty() ? " none" : text;
}

Calls CallsSinceMark(const ScenarioRun& run, const std::vector<std::string>& among)
{
    Calls calls;
    for (const Entry& entry : run.SinceMark())
    {
        if (entry.m_strKind == "call" && StartsWithOneOf(entry.m_strSubject, among))
            calls.push_back({entry.m_strSubject, entry.m_details});
    }
    return calls;
}

// The name of a call, or {"call": name, "details": {some of them}}.
Call ReadCall(const nlohmann::json& value, const std::string& place)
{
    if (value.is_string())
        return {value.get<std::string>()};
    ObjectReader reader(value, place);
    Call call{reader.Get<std::string>("call"), reader.Get<nlohmann::json>("details", nlohmann::json::object())};
    reader.Finish();
    return call;
}

// {"calls": [calls], "among": [beginnings of names]}: of the calls among those, exactly these were made, in this order.
Action ReadExpectCalls(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    Calls expected;
    std::vector<std::string> names;
    for (const nlohmann::json& call : reader.Get<std::vector<nlohmann::json>>("calls"))
    {
        expected.push_back(ReadCall(call, reader.PlaceOf("calls/" + std::to_string(expected.size()))));
        names.push_back(expected.back().m_strName);
    }
    const auto among = reader.Get<std::vector<std::string>>("among", names);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const Calls calls = CallsSinceMark(run, among);
        if (!std::ranges::equal(expected, calls,
                                [](const Call& wanted, const Call& made) { return wanted.IsMetBy(made); }))
            throw StepFailure("expected calls:" + Listed(expected) + "\n  calls made:" + Listed(calls));
    };
}

// {"kind", "subject", "details": {some of them}, "within": ms}: any entry of the machine's journal.
Action ReadWaitFor(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto kind = reader.Get<std::string>("kind");
    const auto subject = reader.Get<std::string>("subject", "");
    const auto details = reader.Get<nlohmann::json>("details", nlohmann::json::object());
    const auto within = reader.Get<unsigned>("within", 0);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const auto limit = within != 0 ? std::chrono::milliseconds(within) : run.GetOptions().m_limit;
        const auto entry = run.Take(
            [&](const Entry& candidate)
            {
                return candidate.m_strKind == kind && (subject.empty() || candidate.m_strSubject == subject) &&
                       Includes(candidate.m_details, details);
            },
            limit);
        if (!entry)
            throw StepFailure("this did not happen: " + kind + " " + subject + " " + details.dump());
    };
}

Action ReadRememberLive(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run) { run.m_mapRememberedLive = run.LiveObjects(); };
}

// As many objects of the machine are alive as at "remember-live". What Windows lets go a little later is waited for.
Action ReadExpectNoLeak(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        std::map<std::string, long> alive = run.LiveObjects();
        while (alive != run.m_mapRememberedLive && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            alive = run.LiveObjects();
        }
        if (alive != run.m_mapRememberedLive)
            throw StepFailure("objects were left over: " + nlohmann::json(alive).dump() + " are alive, " +
                              nlohmann::json(run.m_mapRememberedLive).dump() + " were before");
        run.Say("check", "nothing is leaked");
    };
}
} // namespace

std::vector<StepKind> CallExpectations()
{
    return {{"expect-calls", &ReadExpectCalls},
            {"wait-for", &ReadWaitFor},
            {"remember-live", &ReadRememberLive},
            {"expect-no-leak", &ReadExpectNoLeak}};
}
} // namespace Simulator

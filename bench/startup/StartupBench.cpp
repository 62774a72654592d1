#include "bench/startup/StartedProgram.h"
#include "bench/support/Bench.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <vector>

namespace
{
constexpr int g_rounds = 15;
constexpr double g_timeLimit = 1.5;
constexpr double g_memoryLimit = 1.5;

struct Program
{
    const wchar_t* m_pPath;
    const wchar_t* m_pWindowClass;
    std::vector<double> m_lstMilliseconds;
    std::vector<double> m_lstMebibytes;
};

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Measure(std::vector<Program>& programs)
{
    // The first start of each reads its file from the disk: not counted.
    for (int round = -1; round < g_rounds; ++round)
    {
        for (Program& program : programs)
        {
            const StartCost cost = MeasureStart(program.m_pPath, program.m_pWindowClass);
            if (round < 0)
                continue;
            program.m_lstMilliseconds.push_back(cost.m_milliseconds);
            program.m_lstMebibytes.push_back(cost.m_peakMebibytes);
        }
    }
}

// What the agent costs beside the system's components, against the minimal program.
double OwnShare(double agent, double com, double minimal)
{
    return (agent - (com - minimal)) / minimal;
}
} // namespace

int main(int argc, char** argv)
try
{
    std::vector<Program> programs = {{BENCH_MINIMAL_PROGRAM, L"ORVIKMINIMALPROGRAM", {}, {}},
                                     {BENCH_COM_PROGRAM, L"ORVIKCOMPROGRAM", {}, {}},
                                     {BENCH_AGENT, L"ORVIKNOTIFICATIONS", {}, {}}};
    Measure(programs);
    const double minimal = Median(programs[0].m_lstMilliseconds);
    const double com = Median(programs[1].m_lstMilliseconds);
    const double agent = Median(programs[2].m_lstMilliseconds);
    const double minimalMemory = Median(programs[0].m_lstMebibytes);
    const double comMemory = Median(programs[1].m_lstMebibytes);
    const double agentMemory = Median(programs[2].m_lstMebibytes);

    Bench::Comparison comparison("Start-up to the message loop, warm starts");
    comparison.Number("minimal hidden window, ms", minimal, Bench::NoLimit);
    comparison.Number("the same with the system's COM parts, ms", com, Bench::NoLimit);
    comparison.Number("agent, ms", agent, Bench::NoLimit);
    comparison.Number("minimal hidden window, peak MiB", minimalMemory, Bench::NoLimit);
    comparison.Number("the same with the system's COM parts, peak MiB", comMemory, Bench::NoLimit);
    comparison.Number("agent, peak MiB", agentMemory, Bench::NoLimit);
    comparison.Number("time: agent without the COM parts / minimal", OwnShare(agent, com, minimal), g_timeLimit);
    comparison.Number("peak memory: agent without the COM parts / minimal",
                      OwnShare(agentMemory, comMemory, minimalMemory), g_memoryLimit);
    return comparison.Run(argc > 1 ? argv[1] : "build/bench/startup.json");
}
catch (const std::exception& exception)
{
    std::printf("startup: %s\n", exception.what());
    return 1;
}

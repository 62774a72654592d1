#include "bench/support/Bench.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace Bench
{
namespace
{
constexpr int g_rounds = 15;
// Many short slices: on a busy machine a long one is hardly ever run through without a neighbour.
constexpr int g_slices = 25;
constexpr double g_sliceNanoseconds = 300'000;

void Do(void (*work)())
{
    if (work != nullptr)
        work();
}

double Nanoseconds(Subject subject, const Surroundings& surroundings, std::size_t times)
{
    static const double scale = []
    {
        LARGE_INTEGER frequency{};
        QueryPerformanceFrequency(&frequency);
        return 1e9 / static_cast<double>(frequency.QuadPart);
    }();
    LARGE_INTEGER start{};
    LARGE_INTEGER end{};
    Do(surroundings.m_pfnBefore);
    QueryPerformanceCounter(&start);
    subject(times);
    QueryPerformanceCounter(&end);
    Do(surroundings.m_pfnAfter);
    return static_cast<double>(end.QuadPart - start.QuadPart) * scale;
}

double FastestOf(int slices, Subject subject, const Surroundings& surroundings, std::size_t times)
{
    double fastest = std::numeric_limits<double>::max();
    for (int slice = 0; slice < slices; ++slice)
        fastest = std::min(fastest, Nanoseconds(subject, surroundings, times));
    return fastest;
}

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void PinToOneProcessor()
{
    DWORD_PTR mine = 0;
    DWORD_PTR all = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &mine, &all);
    SetThreadAffinityMask(GetCurrentThread(), mine & (~mine + 1));
}
} // namespace

Comparison::Comparison(std::string title) : m_strTitle(std::move(title)) {}

void Comparison::Add(std::string name, Subject subject, Surroundings surroundings)
{
    m_lstTimed.push_back({std::move(name), subject, surroundings, 1, {}});
}

void Comparison::Ratio(std::string description, std::string name, std::vector<std::string> others, double limit)
{
    m_lstLines.push_back({std::move(description), std::move(name), std::move(others), limit, 0});
}

void Comparison::Number(std::string description, double value, double limit)
{
    m_lstLines.push_back({std::move(description), {}, {}, limit, value});
}

void Comparison::Calibrate(Timed& timed) const
{
    while (FastestOf(g_slices, timed.m_pfnSubject, timed.m_surroundings, timed.m_nTimes) < g_sliceNanoseconds)
        timed.m_nTimes *= 2;
}

void Comparison::MeasureRounds()
{
    for (int round = 0; round < g_rounds; ++round)
    {
        for (Timed& timed : m_lstTimed)
        {
            const double fastest = FastestOf(g_slices, timed.m_pfnSubject, timed.m_surroundings, timed.m_nTimes);
            timed.m_lstNanoseconds.push_back(fastest / static_cast<double>(timed.m_nTimes));
        }
    }
}

const Comparison::Timed& Comparison::Find(const std::string& name) const
{
    const auto found =
        std::find_if(m_lstTimed.begin(), m_lstTimed.end(), [&](const Timed& timed) { return timed.m_strName == name; });
    if (found == m_lstTimed.end())
        throw std::logic_error("no subject is named " + name);
    return *found;
}

void Comparison::Evaluate(Line& line) const
{
    if (line.m_strName.empty())
        return;
    const Timed& subject = Find(line.m_strName);
    std::vector<double> ratios;
    for (std::size_t round = 0; round < subject.m_lstNanoseconds.size(); ++round)
    {
        double sum = 0;
        for (const std::string& other : line.m_lstOthers)
            sum += Find(other).m_lstNanoseconds[round];
        ratios.push_back(subject.m_lstNanoseconds[round] / sum);
    }
    line.m_value = Median(std::move(ratios));
}

int Comparison::Print() const
{
    std::printf("%s: medians of %d rounds\n\n", m_strTitle.c_str(), g_rounds);
    for (const Timed& timed : m_lstTimed)
        std::printf("  %-62s %10.2f ns\n", timed.m_strName.c_str(), Median(timed.m_lstNanoseconds));
    std::printf("\n");
    int exceeded = 0;
    for (const Line& line : m_lstLines)
    {
        std::printf("  %-62s %10.3f", line.m_strDescription.c_str(), line.m_value);
        if (line.m_limit < 0)
            std::printf("\n");
        else if (line.m_value <= line.m_limit)
            std::printf("  at most %.2f\n", line.m_limit);
        else
        {
            std::printf("  EXCEEDS %.2f\n", line.m_limit);
            ++exceeded;
        }
    }
    if (exceeded != 0)
        std::printf("\n%d of the limits exceeded\n", exceeded);
    std::fflush(stdout);
    return exceeded != 0 ? 1 : 0;
}

bool Comparison::WriteJson(const char* file) const
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(file, "w"), &std::fclose);
    if (!out)
    {
        std::fprintf(stderr, "%s cannot be written\n", file);
        return false;
    }
    std::fprintf(out.get(), "{\n  \"title\": \"%s\",\n  \"rounds\": %d,\n  \"nanoseconds\": {", m_strTitle.c_str(),
                 g_rounds);
    const char* separator = "\n";
    for (const Timed& timed : m_lstTimed)
    {
        std::fprintf(out.get(), "%s    \"%s\": %.3f", separator, timed.m_strName.c_str(),
                     Median(timed.m_lstNanoseconds));
        separator = ",\n";
    }
    std::fprintf(out.get(), "\n  },\n  \"results\": [");
    separator = "\n";
    for (const Line& line : m_lstLines)
    {
        std::fprintf(out.get(), "%s    {\"name\": \"%s\", \"value\": %.4f", separator, line.m_strDescription.c_str(),
                     line.m_value);
        if (line.m_limit >= 0)
            std::fprintf(out.get(), ", \"limit\": %.4f", line.m_limit);
        std::fprintf(out.get(), "}");
        separator = ",\n";
    }
    std::fprintf(out.get(), "\n  ]\n}\n");
    return true;
}

int Comparison::Run(const char* jsonFile)
{
    PinToOneProcessor();
    for (Timed& timed : m_lstTimed)
        Calibrate(timed);
    MeasureRounds();
    for (Line& line : m_lstLines)
        Evaluate(line);
    const int result = Print();
    return WriteJson(jsonFile) ? result : 1;
}
} // namespace Bench

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Bench
{
// A line of the table that nothing is asked of.
inline constexpr double NoLimit = -1;

// What is measured: does its work that many times.
using Subject = void (*)(std::size_t times);

// What is done before and after each slice of a subject, and not timed; either may be null.
struct Surroundings
{
    void (*m_pfnBefore)() = nullptr;
    void (*m_pfnAfter)() = nullptr;
};

// Measures subjects against each other in one run: in each round every subject is timed, one after the other, many
// times for a fraction of a millisecond, and its fastest time counts, so that a neighbour's time slice does not. What
// is reported are medians over the rounds; ratios are taken within each round. One thread, pinned to one processor.
class Comparison
{
public:
    explicit Comparison(std::string title);

    void Add(std::string name, Subject subject, Surroundings surroundings = {});
    // A line of the table: the time of `name` divided by the sum of the others; a negative limit (NoLimit) is for show.
    void Ratio(std::string description, std::string name, std::vector<std::string> others, double limit);
    // A number that is not a time, known without measuring.
    void Number(std::string description, double value, double limit);

    // Measures, prints the table, writes it as JSON to the file. Returns the exit code of the program: 0, or 1
    // when a limit was exceeded or the file could not be written.
    [[nodiscard]] int Run(const char* jsonFile);

private:
    struct Timed
    {
        std::string m_strName;
        Subject m_pfnSubject;
        Surroundings m_surroundings;
        std::size_t m_nTimes;
        std::vector<double> m_lstNanoseconds; // per repetition, one for each round
    };

    struct Line
    {
        std::string m_strDescription;
        std::string m_strName;
        std::vector<std::string> m_lstOthers;
        double m_limit;
        double m_value;
    };

    void Calibrate(Timed& timed) const;
    void MeasureRounds();
    [[nodiscard]] const Timed& Find(const std::string& name) const;
    void Evaluate(Line& line) const;
    [[nodiscard]] int Print() const;
    [[nodiscard]] bool WriteJson(const char* file) const;

    std::string m_strTitle;
    std::vector<Timed> m_lstTimed;
    std::vector<Line> m_lstLines;
};
} // namespace Bench

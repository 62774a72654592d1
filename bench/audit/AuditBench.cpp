#include "bench/audit/CopyTimes.h"
#include "bench/audit/LookUps.h"
#include "bench/support/Bench.h"
#include "platform/ComApartment.h"
#include "shared/OwnerTypes.h"
#include "wmievents/WmiEventsState.h"

#include <cstdio>
#include <exception>
#include <string>

namespace
{
using Bench::NoLimit;

constexpr const char* g_keyMap = "look-up in the key map";
constexpr const char* g_bareMap = "look-up in a bare unordered_map";

void AddFigures(Bench::Comparison& comparison, const char* size, const CopyTimes::Figures& figures)
{
    const std::string entries = std::string(size) + " entries: ";
    comparison.Number(entries + "MSXML, ms", figures.m_component, NoLimit);
    comparison.Number(entries + "agent, all known, ms", figures.m_known, NoLimit);
    comparison.Number(entries + "agent, all new, ms", figures.m_new, NoLimit);
}
} // namespace

int main(int argc, char** argv)
try
{
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    InitializeCriticalSection(&Notifications::OrvikWmiEvents::g_csCopy);
    const CopyTimes::Figures thousand = CopyTimes::Measure(1'000);
    const CopyTimes::Figures tenThousand = CopyTimes::Measure(10'000);

    Bench::Comparison comparison("Copy of the audit log");
    AddFigures(comparison, "1,000", thousand);
    AddFigures(comparison, "10,000", tenThousand);
    constexpr double linear = 12;
    comparison.Number("10,000 entries / 1,000 entries, agent, all known", tenThousand.m_known / thousand.m_known,
                      linear);
    comparison.Number("10,000 entries / 1,000 entries, agent, all new", tenThousand.m_new / thousand.m_new, linear);
    LookUps::Prepare();
    comparison.Add(g_keyMap, &LookUps::InKeyMap);
    comparison.Add(g_bareMap, &LookUps::InBareMap);
    comparison.Ratio("look-up in the key map / in a bare unordered_map", g_keyMap, {g_bareMap}, 1.5);
    return comparison.Run(argc > 1 ? argv[1] : "build/bench/audit.json");
}
catch (const std::exception& exception)
{
    std::printf("audit: %s\n", exception.what());
    return 1;
}

#include "simulator/console/Step.h"

namespace Simulator
{
namespace
{
std::map<std::string, StepReader> AllKinds()
{
    std::map<std::string, StepReader> kinds;
    for (const auto& group :
         {AgentSteps(), EventSteps(), SystemSteps(), AcpiSteps(), UsbSteps(), UserSteps(), DialogSteps(), StateSteps(),
          PlanSteps(), RecordSteps(), SoakSteps(), ToastExpectations(), DialogExpectations(), LogExpectations(),
          RecordExpectations(), CallExpectations(), FileExpectations(), LogFileExpectations(), DeviceExpectations()})
    {
        for (const StepKind& kind : group)
            kinds[kind.m_pName] = kind.m_pfnRead;
    }
    return kinds;
}
} // namespace

Step ReadStep(const nlohmann::json& step, const std::string& place)
{
    static const std::map<std::string, StepReader> kinds = AllKinds();
    if (!step.is_object() || step.size() != 1)
        throw UsageError(place + ": a step is an object with one key");
    const std::string name = step.begin().key();
    const auto kind = kinds.find(name);
    if (kind == kinds.end())
    {
        std::string known;
        for (const auto& [other, reader] : kinds)
            known += (known.empty() ? "" : ", ") + other;
        throw UsageError(place + ": there is no step \"" + name + "\"; known: " + known);
    }
    const std::string placeOfValue = place + "/" + name;
    return {placeOfValue, kind->second(step.begin().value(), placeOfValue)};
}
} // namespace Simulator

#pragma once

#include "simulator/doubles/EnumWbemClassObjectDouble.h"
#include "simulator/doubles/WmiQuery.h"

#include <optional>

namespace Simulator
{
// What the facts hold for a query, each instance with the properties that it selects; nothing when the namespace does
// not have the class. The facts are described in WbemServicesDouble.h.
[[nodiscard]] std::optional<std::deque<EnumWbemClassObjectDouble::Instance>> InstancesOf(
    std::string_view normalNamespace, const WmiQuery& query);
} // namespace Simulator

#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/PlixInterfaces.h"

namespace Simulator
{
// The notification component: it only has to exist.
class PlixNotificationDouble final : public ComDouble<IPlixNotificationServer>
{
public:
    PlixNotificationDouble();
};
} // namespace Simulator

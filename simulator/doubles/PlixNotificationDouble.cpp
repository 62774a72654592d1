#include "simulator/doubles/PlixNotificationDouble.h"

namespace Simulator
{
PlixNotificationDouble::PlixNotificationDouble() : ComDouble("PlixNotification") {}
} // namespace Simulator

#pragma once

#include <chrono>

namespace Simulator
{
// A program that asks for the arrivals of devices is told of them a while later: the part of Windows that listens for
// the process is started by the first question and nobody says when it is ready. Waits until a probe device's arrival
// reaches this process, which has asked already. Windows of the calling thread get no messages meanwhile. False when
// none arrived in that time, or without the driver.
[[nodiscard]] bool WaitUntilArrivalsAreTold(std::chrono::milliseconds limit);
} // namespace Simulator

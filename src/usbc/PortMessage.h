#pragma once

#include <cstdint>

// One message of the firmware about a USB-C port, in the firmware's own numbers and units; -1 is a value that was not
// given. The port itself is not part of it.
struct PortMessage
{
    std::int32_t iMessageId = -1;
    std::int32_t iNormalPower = -1;
    std::int32_t iSuppliedPower = -1;
    std::int32_t iRequestedPower = -1;
    std::int32_t iMaxSuppliedPower = -1;
    std::int32_t iNeededVoltage = -1;
    std::int32_t iNeededCurrent = -1;
    std::int32_t iProvidedVoltage = -1;
    std::int32_t iProvidedCurrent = -1;
    std::int32_t iRequestedVoltage = -1;
    std::int32_t iRequestedCurrent = -1;

    bool operator==(const PortMessage&) const = default;
};

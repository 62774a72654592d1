#include "platform/WmiNamespace.h"

#include <cstddef>

const wchar_t* NamespacePath(WmiNamespace wmiNamespace)
{
    static constexpr const wchar_t* paths[] = {
        LR"(\\.\root\cimv2)",
        LR"(\\.\root\wmi)",
        LR"(\\.\root\cimv2\security\MicrosoftTpm)",
        LR"(\\.\root\Orvik\InstrumentedBIOS)",
        LR"(\\.\root\Orvik\InstrumentedSecurity)",
        LR"(\\.\root\CIMV2\Security\MicrosoftVolumeEncryption)",
        LR"(\\.\root\Orvik\InstrumentedServices\v1)",
    };
    return paths[static_cast<std::size_t>(wmiNamespace)];
}

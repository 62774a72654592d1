#pragma once

// The namespaces that a WmiQuery can be connected to, in the order of their table.
enum class WmiNamespace
{
    Cimv2,
    Wmi,
    MicrosoftTpm,
    InstrumentedBios,
    InstrumentedSecurity,
    MicrosoftVolumeEncryption,
    InstrumentedServices
};

// The path of a namespace on this computer; lives for the whole run.
[[nodiscard]] const wchar_t* NamespacePath(WmiNamespace wmiNamespace);

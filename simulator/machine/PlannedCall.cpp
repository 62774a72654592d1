#include "simulator/machine/PlannedCall.h"

namespace Simulator
{
void* FindWindowsFunction(const char* name)
{
    static constexpr const wchar_t* libraries[] = {L"kernel32.dll", L"advapi32.dll", L"user32.dll",
                                                   L"combase.dll",  L"ole32.dll",    L"oleaut32.dll",
                                                   L"shell32.dll",  L"wtsapi32.dll", L"setupapi.dll"};
    for (const wchar_t* library : libraries)
    {
        const HMODULE module = GetModuleHandleW(library);
        if (module == nullptr)
            continue;
        if (const FARPROC function = GetProcAddress(module, name); function != nullptr)
            return reinterpret_cast<void*>(function);
    }
    return nullptr;
}
} // namespace Simulator

#include "simulator/doubles/RealFunctions.h"

namespace Simulator
{
namespace
{
template <class Function>
void Find(const wchar_t* library, const char* name, Function*& function)
{
    function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

// Made while the module is initialised: no redirection exists yet.
[[maybe_unused]] const RealFunctions& g_early = RealFunctions::Instance();
} // namespace

RealFunctions::RealFunctions()
{
    Find(L"ole32.dll", "CoInitialize", CoInitialize);
    Find(L"ole32.dll", "CoInitializeEx", CoInitializeEx);
    Find(L"ole32.dll", "CoUninitialize", CoUninitialize);
    Find(L"ole32.dll", "CoInitializeSecurity", CoInitializeSecurity);
    Find(L"ole32.dll", "CoCreateInstance", CoCreateInstance);
    Find(L"ole32.dll", "CLSIDFromProgID", CLSIDFromProgID);
    Find(L"ole32.dll", "OleRun", OleRun);
    Find(L"ole32.dll", "CoSetProxyBlanket", CoSetProxyBlanket);
    Find(L"ole32.dll", "CoMarshalInterThreadInterfaceInStream", CoMarshalInterThreadInterfaceInStream);
    Find(L"ole32.dll", "CoGetInterfaceAndReleaseStream", CoGetInterfaceAndReleaseStream);
    Find(L"oleaut32.dll", "SysAllocStringLen", SysAllocStringLen);
    Find(L"oleaut32.dll", "VariantClear", VariantClear);
}

const RealFunctions& RealFunctions::Instance()
{
    static const RealFunctions functions;
    return functions;
}
} // namespace Simulator

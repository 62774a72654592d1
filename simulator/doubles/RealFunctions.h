#pragma once

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

namespace Simulator
{
// The system's own functions, found before anything was redirected: what the doubles call for themselves. In a unit
// test they share the test program's import table with the product, and their calls must be neither journalled nor made
// to fail.
struct RealFunctions
{
    RealFunctions();

    static const RealFunctions& Instance();

    decltype(::CoInitialize)* CoInitialize;
    decltype(::CoInitializeEx)* CoInitializeEx;
    decltype(::CoUninitialize)* CoUninitialize;
    decltype(::CoInitializeSecurity)* CoInitializeSecurity;
    decltype(::CoCreateInstance)* CoCreateInstance;
    decltype(::CLSIDFromProgID)* CLSIDFromProgID;
    decltype(::OleRun)* OleRun;
    decltype(::CoSetProxyBlanket)* CoSetProxyBlanket;
    decltype(::CoMarshalInterThreadInterfaceInStream)* CoMarshalInterThreadInterfaceInStream;
    decltype(::CoGetInterfaceAndReleaseStream)* CoGetInterfaceAndReleaseStream;
    decltype(::SysAllocStringLen)* SysAllocStringLen;
    decltype(::VariantClear)* VariantClear;
};
} // namespace Simulator

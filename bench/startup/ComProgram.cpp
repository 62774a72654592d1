#include "bench/startup/HiddenWindow.h"

#include <objbase.h>
#include <wtsapi32.h>

// The baseline plus what the agent asks of the system's own components on a machine without the platform library: an
// apartment, three activations of a class that is not registered, an event source, the session's notifications. The
// difference to the minimal program is the system's cost, not the agent's.
int APIENTRY wWinMain(HINSTANCE instance, HINSTANCE, LPWSTR, int)
{
    constexpr CLSID absentClass = {0xCA490AE1, 0x8C69, 0x45D5, {0x95, 0x33, 0xD4, 0x69, 0x27, 0x26, 0xF2, 0xFB}};
    constexpr int activations = 3;
    const HANDLE eventSource = RegisterEventSourceW(nullptr, L"OrvikComProgram");
    CoInitialize(nullptr);
    for (int i = 0; i < activations; ++i)
    {
        IUnknown* object = nullptr;
        if (SUCCEEDED(CoCreateInstance(absentClass, nullptr, CLSCTX_SERVER | CLSCTX_INPROC_HANDLER, IID_IUnknown,
                                       reinterpret_cast<void**>(&object))))
            return 2;
    }
    const int exitCode = RunHiddenWindow(instance, L"ORVIKCOMPROGRAM");
    CoUninitialize();
    DeregisterEventSource(eventSource); // NOCHECK(raw-release): the baseline is a bare program on purpose
    return exitCode;
}

#include "simulator/doubles/DoubleClasses.h"
#include "simulator/machine/Machine.h"
#include "simulator/toasts/ToastActivation.h"

#include <activation.h>
#include <objbase.h>

// The DLL is two things in one: what the console loads into the agent's process, and the server of the doubles'
// classes, which COM finds in the registry of a prepared machine. Without the marker it serves nobody.

extern "C" DWORD WINAPI StartSimulatedMachine(void*)
{
    return static_cast<DWORD>(Simulator::StartMachine());
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object)
{
    *object = nullptr;
    return Simulator::Protocol::IsPreparedMachine() ? Simulator::GetDoubleClassObject(classId, iid, object)
                                                    : CLASS_E_CLASSNOTAVAILABLE;
}

// Redirections and journal stay until the process is gone, and so does the machine.
STDAPI DllCanUnloadNow()
{
    return S_FALSE;
}

extern "C" HRESULT WINAPI DllGetActivationFactory(HSTRING classId, IActivationFactory** factory)
{
    *factory = nullptr;
    return Simulator::Protocol::IsPreparedMachine() ? Simulator::GetToastActivationFactory(classId, factory)
                                                    : CLASS_E_CLASSNOTAVAILABLE;
}

#include "simulator/doubles/DoubleClasses.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"

// The doubles as a COM server, with two more functions by which a test reaches the model inside.
extern "C"
{
    HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object)
    {
        return Simulator::GetDoubleClassObject(classId, iid, object);
    }

    HRESULT WINAPI DllCanUnloadNow()
    {
        return S_FALSE;
    }

    void WINAPI SetServerFact(const char* pointer, const char* json)
    {
        Simulator::Facts::Instance().Set(pointer, nlohmann::json::parse(json));
    }

    long WINAPI CountServerObjects()
    {
        return Simulator::LiveObjects::Count();
    }
}

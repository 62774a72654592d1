#include "simulator/doubles/UnsecuredApartmentServer.h"

#include "simulator/doubles/DoubleClasses.h"
#include "simulator/doubles/RealFunctions.h"

namespace Simulator
{
UnsecuredApartmentServer::UnsecuredApartmentServer()
    : m_hr(E_UNEXPECTED), m_hRegistered(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_hStop(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_thread([this] { Run(); })
{
    WaitForSingleObject(m_hRegistered.get(), INFINITE);
}

UnsecuredApartmentServer::~UnsecuredApartmentServer()
{
    SetEvent(m_hStop.get());
    m_thread.join();
}

void UnsecuredApartmentServer::Run()
{
    const RealFunctions& real = RealFunctions::Instance();
    m_hr = real.CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (SUCCEEDED(m_hr))
    {
        Serve();
        real.CoUninitialize();
    }
    SetEvent(m_hRegistered.get());
}

void UnsecuredApartmentServer::Serve()
{
    IUnknown* factory = nullptr;
    m_hr = GetDoubleClassObject(UnsecuredApartmentClassId, IID_IUnknown, reinterpret_cast<void**>(&factory));
    if (FAILED(m_hr))
        return;
    DWORD cookie = 0;
    m_hr = CoRegisterClassObject(UnsecuredApartmentClassId, factory, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    if (SUCCEEDED(m_hr))
    {
        SetEvent(m_hRegistered.get());
        WaitForSingleObject(m_hStop.get(), INFINITE);
        CoRevokeClassObject(cookie);
    }
    factory->Release();
}
} // namespace Simulator

#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <thread>

namespace Simulator
{
// The unsecured apartment's local server, without a process of its own: its class object is registered with COM from a
// thread in the multithreaded apartment, where CoCreateInstance finds it. The thread keeps that apartment alive.
class UnsecuredApartmentServer
{
public:
    // Returns when the class object is registered, or could not be.
    UnsecuredApartmentServer();
    UnsecuredApartmentServer(const UnsecuredApartmentServer&) = delete;
    UnsecuredApartmentServer& operator=(const UnsecuredApartmentServer&) = delete;
    ~UnsecuredApartmentServer();

    // How the registration ended.
    [[nodiscard]] HRESULT Result() const noexcept { return m_hr; }

private:
    void Run();
    void Serve();

    HRESULT m_hr;
    Orvik::Shared::UniqueHandle m_hRegistered;
    Orvik::Shared::UniqueHandle m_hStop;
    std::thread m_thread;
};
} // namespace Simulator

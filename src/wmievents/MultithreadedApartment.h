#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <functional>

namespace Notifications::OrvikWmiEvents
{
// The thread that keeps the process's multithreaded apartment alive and does there what must not happen in the
// caller's apartment: an object first marshalled from a single-threaded apartment is called through that apartment's
// message loop for good. The thread waits idle between two pieces of work and ends with the process.
class MultithreadedApartment
{
public:
    // One per process, never destroyed. Any thread.
    static MultithreadedApartment& Instance();

    MultithreadedApartment(const MultithreadedApartment&) = delete;
    MultithreadedApartment& operator=(const MultithreadedApartment&) = delete;

    // Runs the work in the apartment and waits for its result. The first call starts the thread; when that fails, its
    // error is returned and the next call tries again. The work must not throw. Not from within the apartment's thread.
    [[nodiscard]] HRESULT Run(const std::function<HRESULT()>& work);

private:
    MultithreadedApartment() = default;

    static DWORD WINAPI ThreadRoutine(void* apartment);
    HRESULT Start();
    void Serve();

    Orvik::Shared::CriticalSection m_cs; // one caller at a time
    Orvik::Shared::UniqueHandle m_hRequested;
    Orvik::Shared::UniqueHandle m_hDone;
    Orvik::Shared::UniqueHandle m_hThread;
    // Handed over by the two events.
    const std::function<HRESULT()>* m_pWork = nullptr;
    HRESULT m_hrResult = S_OK;
};
} // namespace Notifications::OrvikWmiEvents

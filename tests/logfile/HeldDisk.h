#pragma once

#include "shared/OwnerTypes.h"
#include "tests/logfile/ReplacedCall.h"

#include <windows.h>

#include <atomic>
#include <cstdio>

// A disk that stands still: for the life of the object, or until Release, whoever writes a record to a log file waits.
// One at a time. Behind its end nobody waits any more.
class HeldDisk
{
public:
    HeldDisk();
    HeldDisk(const HeldDisk&) = delete;
    HeldDisk& operator=(const HeldDisk&) = delete;
    ~HeldDisk();

    // False when nobody began to write within 20 seconds.
    [[nodiscard]] static bool WaitForAWriter();
    static void Release();

private:
    static std::size_t Write(const void* data, std::size_t size, std::size_t count, std::FILE* stream);

    static inline Orvik::Shared::UniqueHandle s_hReleased;
    static inline Orvik::Shared::UniqueHandle s_hEntered;
    static inline std::atomic<int> s_nInside = 0;
    static inline WriteFunction* s_pfnWrite = nullptr;

    Simulator::Redirection<WriteFunction> m_redirection;
};

#include "tests/logfile/HeldDisk.h"

using Orvik::Shared::UniqueHandle;

HeldDisk::HeldDisk() : m_redirection("fwrite", &Write)
{
    s_hReleased.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    s_hEntered.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    s_pfnWrite = m_redirection.Original();
}

HeldDisk::~HeldDisk()
{
    Release();
    while (s_nInside != 0)
        Sleep(1);
}

bool HeldDisk::WaitForAWriter()
{
    return WaitForSingleObject(s_hEntered.get(), 20'000) == WAIT_OBJECT_0;
}

void HeldDisk::Release()
{
    SetEvent(s_hReleased.get());
}

std::size_t HeldDisk::Write(const void* data, std::size_t size, std::size_t count, std::FILE* stream)
{
    // Records alone are written in wide characters.
    if (size != sizeof(wchar_t))
        return s_pfnWrite(data, size, count, stream);
    ++s_nInside;
    SetEvent(s_hEntered.get());
    WaitForSingleObject(s_hReleased.get(), INFINITE);
    const std::size_t written = s_pfnWrite(data, size, count, stream);
    --s_nInside;
    return written;
}

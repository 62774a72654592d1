#include "bench/event/AcpiEventDevice.h"

#include "bench/support/EventClock.h"
#include "usbc/AcpiUsbCMonitor.h"

#include <windows.h>

#include <cwchar>
#include <iterator>

namespace EventBench
{
namespace
{
constexpr wchar_t g_path[] = L"\\\\?\\acpi#kavl0001";

decltype(CreateFileW)* g_pfnCreateFile;
decltype(WaitForMultipleObjects)* g_pfnWait;
bool g_bAnswers = false;
OVERLAPPED* g_pPending = nullptr;
void* g_pOutput = nullptr;

BOOL FailWith(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

HDEVINFO WINAPI GetClassDevs(const GUID*, PCWSTR, HWND, DWORD)
{
    return reinterpret_cast<HDEVINFO>(0x4711);
}

WINBOOL WINAPI Destroy(HDEVINFO)
{
    return TRUE;
}

WINBOOL WINAPI EnumInterface(HDEVINFO, PSP_DEVINFO_DATA, const GUID*, DWORD index, PSP_DEVICE_INTERFACE_DATA)
{
    return index == 0 ? TRUE : FailWith(ERROR_NO_MORE_ITEMS);
}

WINBOOL WINAPI InterfaceDetail(HDEVINFO, PSP_DEVICE_INTERFACE_DATA, PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD,
                               PDWORD needed, PSP_DEVINFO_DATA)
{
    if (needed != nullptr)
        *needed = sizeof(DWORD) + sizeof(g_path);
    if (detail == nullptr)
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    std::wmemcpy(detail->DevicePath, g_path, std::size(g_path));
    return TRUE;
}

HANDLE WINAPI OpenFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                       DWORD flags, HANDLE templateFile)
{
    if (std::wcscmp(path, g_path) != 0)
        return g_pfnCreateFile(path, access, share, security, disposition, flags, templateFile);
    g_bAnswers = true;
    return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

WINBOOL WINAPI Control(HANDLE, DWORD, LPVOID, DWORD, LPVOID output, DWORD, LPDWORD, LPOVERLAPPED overlapped)
{
    if (!g_bAnswers)
        return FailWith(ERROR_GEN_FAILURE);
    g_bAnswers = false;
    g_pOutput = output;
    g_pPending = overlapped;
    return FailWith(ERROR_IO_PENDING);
}

DWORD WINAPI Wait(DWORD count, const HANDLE* handles, WINBOOL all, DWORD milliseconds)
{
    if (g_pPending == nullptr || handles[0] != g_pPending->hEvent)
        return g_pfnWait(count, handles, all, milliseconds);
    g_pPending = nullptr;
    *static_cast<BYTE*>(g_pOutput) = USB_TYPEC_ACPI_EVENT_ID;
    EventClock::Start();
    return WAIT_OBJECT_0;
}
} // namespace

AcpiEventDevice::AcpiEventDevice()
    : m_getClassDevs("SetupDiGetClassDevsW", &GetClassDevs), m_destroy("SetupDiDestroyDeviceInfoList", &Destroy),
      m_enumInterface("SetupDiEnumDeviceInterfaces", &EnumInterface),
      m_detail("SetupDiGetDeviceInterfaceDetailW", &InterfaceDetail), m_createFile("CreateFileW", &OpenFile),
      m_control("DeviceIoControl", &Control), m_wait("WaitForMultipleObjects", &Wait)
{
    g_pfnCreateFile = m_createFile.Original();
    g_pfnWait = m_wait.Original();
}
} // namespace EventBench

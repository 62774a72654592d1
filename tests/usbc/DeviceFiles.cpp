#include "tests/usbc/DeviceFiles.h"

#include "simulator/model/Text.h"
#include "tests/usbc/PlannedFunction.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "usbc/UsbCState.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Tests
{
namespace
{
constexpr LONG g_pendingStatus = 0x103;

DeviceFiles* g_pFiles = nullptr;

HANDLE WINAPI OpenFile(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                       DWORD flags, HANDLE templateFile)
{
    if (!EnterCall("CreateFileW", {{"path", Simulator::Narrow(path)},
                                   {"access", access},
                                   {"share", share},
                                   {"security", security != nullptr},
                                   {"disposition", disposition},
                                   {"flags", flags},
                                   {"template", templateFile != nullptr}}))
        return INVALID_HANDLE_VALUE;
    if (path[0] == L'\0')
    {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (g_pFiles->m_nullWithError)
    {
        SetLastError(*g_pFiles->m_nullWithError);
        return nullptr;
    }
    g_pFiles->m_hOpened = g_pFiles->m_pfnCreateEvent(nullptr, TRUE, FALSE, nullptr);
    if (g_pFiles->m_onOpened)
        g_pFiles->m_onOpened();
    return g_pFiles->m_hOpened;
}

HANDLE WINAPI MakeEvent(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState, LPCWSTR name)
{
    if (!EnterCall("CreateEventW", {{"security", security != nullptr},
                                    {"manual", manualReset != FALSE},
                                    {"signalled", initialState != FALSE},
                                    {"name", name != nullptr}}))
        return nullptr;
    return g_pFiles->m_pfnCreateEvent(security, manualReset, initialState, name);
}

void Complete(const std::vector<BYTE>& data, LONG status)
{
    OVERLAPPED* const overlapped = std::exchange(g_pFiles->m_pPending, nullptr);
    const std::size_t size = std::min<std::size_t>(data.size(), g_pFiles->m_dwPendingSize);
    std::copy_n(data.begin(), size, static_cast<BYTE*>(g_pFiles->m_pPendingOutput));
    overlapped->InternalHigh = size;
    overlapped->Internal = static_cast<ULONG>(status);
    if (g_pFiles->m_pendingAnswer)
        SetEvent(overlapped->hEvent);
    g_pFiles->m_pendingAnswer.reset();
}

BOOL AnswerEventRequest(void* output, DWORD size, DWORD* returned, OVERLAPPED* overlapped)
{
    if (g_pFiles->m_lstAnswers.empty())
        return FailWith(ERROR_GEN_FAILURE);
    Answer answer = g_pFiles->m_lstAnswers.front();
    g_pFiles->m_lstAnswers.pop_front();
    if (answer.m_kind == Answer::Kind::Refused)
        return FailWith(answer.m_dwError);
    if (answer.m_kind == Answer::Kind::AtOnce)
    {
        *returned = static_cast<DWORD>(std::min<std::size_t>(answer.m_lstData.size(), size));
        std::copy_n(answer.m_lstData.begin(), *returned, static_cast<BYTE*>(output));
        return TRUE;
    }
    overlapped->Internal = g_pendingStatus;
    g_pFiles->m_pPending = overlapped;
    g_pFiles->m_pPendingOutput = output;
    g_pFiles->m_dwPendingSize = size;
    g_pFiles->m_pendingAnswer = std::move(answer);
    return FailWith(ERROR_IO_PENDING);
}

// What the program waits for first, when it is the pending request.
bool IsPendingRequest(HANDLE handle)
{
    return g_pFiles->m_pPending != nullptr && g_pFiles->m_pendingAnswer && g_pFiles->m_pPending->hEvent == handle;
}

void ProgramWaits()
{
    const Answer answer = *g_pFiles->m_pendingAnswer;
    if (answer.m_kind == Answer::Kind::Pending)
        Complete(answer.m_lstData, answer.m_status);
    else
        g_pFiles->m_onWait();
}

DWORD WINAPI WaitOne(HANDLE handle, DWORD milliseconds)
{
    if (IsPendingRequest(handle))
    {
        if (!EnterCall("WaitForSingleObject", {{"milliseconds", milliseconds}}))
            return WAIT_FAILED;
        ProgramWaits();
    }
    return g_pFiles->m_pfnWaitOne(handle, milliseconds);
}

DWORD WINAPI WaitMany(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds)
{
    if (IsPendingRequest(handles[0]))
    {
        if (!EnterCall("WaitForMultipleObjects", {{"count", count},
                                                  {"second", handles[1] == g_acpiStopEvent.Get() ? "stop" : "other"},
                                                  {"all", all != FALSE},
                                                  {"milliseconds", milliseconds}}))
            return WAIT_FAILED;
        ProgramWaits();
    }
    return g_pFiles->m_pfnWaitMany(count, handles, all, milliseconds);
}

BOOL AnswerNode(void* output, DWORD size, DWORD* returned)
{
    USB_NODE_INFORMATION node{};
    node.u.HubInformation.HubDescriptor.bNumberOfPorts =
        g_pFiles->m_reportedPorts.value_or(static_cast<UCHAR>(g_pFiles->m_lstPorts.size()));
    *returned = std::min<DWORD>(size, sizeof(node));
    std::memcpy(output, &node, *returned);
    return TRUE;
}

BOOL AnswerPort(const Port& port, ULONG number, void* output, DWORD* returned)
{
    USB_NODE_CONNECTION_INFORMATION_EX information{};
    information.ConnectionIndex = number;
    information.DeviceDescriptor = port.m_descriptor;
    information.ConnectionStatus = port.m_status;
    *returned = sizeof(information);
    std::memcpy(output, &information, *returned);
    return TRUE;
}

BOOL AnswerDriverKey(const Port& port, ULONG number, void* output, DWORD size, DWORD* returned)
{
    const ULONG header = offsetof(USB_NODE_CONNECTION_DRIVERKEY_NAME, DriverKeyName);
    const ULONG whole = header + static_cast<ULONG>((port.m_strDriverKey.size() + 1) * sizeof(wchar_t));
    std::vector<BYTE> answer(whole);
    const ULONG told = port.m_keySize.value_or(whole);
    std::memcpy(answer.data(), &number, sizeof(number));
    std::memcpy(answer.data() + sizeof(number), &told, sizeof(told));
    std::memcpy(answer.data() + header, port.m_strDriverKey.c_str(), whole - header);
    *returned = std::min(size, whole);
    std::memcpy(output, answer.data(), *returned);
    return TRUE;
}

BOOL AnswerHubRequest(DWORD code, void* output, DWORD size, DWORD* returned)
{
    if (code == IOCTL_USB_GET_NODE_INFORMATION)
        return AnswerNode(output, size, returned);
    ULONG number = 0;
    std::memcpy(&number, output, sizeof(number));
    if (number < 1 || number > g_pFiles->m_lstPorts.size())
        return FailWith(ERROR_INVALID_PARAMETER);
    const Port& port = g_pFiles->m_lstPorts[number - 1];
    if (code == IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX)
        return AnswerPort(port, number, output, returned);
    return AnswerDriverKey(port, number, output, size, returned);
}

BOOL WINAPI Control(HANDLE, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize, DWORD* returned,
                    OVERLAPPED* overlapped)
{
    nlohmann::json details = {{"code", code},
                              {"input", input != nullptr},
                              {"input-size", inputSize},
                              {"output", output != nullptr},
                              {"output-size", outputSize},
                              {"same", input == output},
                              {"returned", *returned},
                              {"overlapped", overlapped != nullptr}};
    if (overlapped != nullptr)
        details["overlapped-zero"] = overlapped->Internal == 0 && overlapped->InternalHigh == 0 &&
                                     overlapped->Offset == 0 && overlapped->OffsetHigh == 0 &&
                                     overlapped->hEvent != nullptr;
    else if (code != IOCTL_USB_GET_NODE_INFORMATION)
        details["port"] = *static_cast<const ULONG UNALIGNED*>(input);
    if (!EnterCall("DeviceIoControl", std::move(details)))
        return FALSE;
    return overlapped != nullptr ? AnswerEventRequest(output, outputSize, returned, overlapped)
                                 : AnswerHubRequest(code, output, outputSize, returned);
}

BOOL WINAPI Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return EnterCall("PostMessageW",
                     {{"main", window == g_hwndMain}, {"message", message}, {"wParam", wParam}, {"lParam", lParam}})
               ? TRUE
               : FALSE;
}
// The plan makes an event of its own when it is first used: that must be before its calls are redirected.
HMODULE Prepared()
{
    Simulator::CallPlan::Instance().Reset();
    return nullptr;
}
} // namespace

DeviceFiles::DeviceFiles()
    : m_onWait([] { SignalAcpiMonitorStop(); }), m_createFile(Prepared(), "CreateFileW", &OpenFile),
      m_control("DeviceIoControl", &Control), m_createEvent("CreateEventW", &MakeEvent),
      m_waitOne("WaitForSingleObject", &WaitOne), m_waitMany("WaitForMultipleObjects", &WaitMany),
      m_post("PostMessageW", &Post), m_pfnCreateEvent(m_createEvent.Original()), m_pfnWaitOne(m_waitOne.Original()),
      m_pfnWaitMany(m_waitMany.Original())
{
    g_pFiles = this;
}

void DeviceFiles::FinishLate(std::vector<BYTE> data)
{
    // Its event is closed by now.
    m_pendingAnswer.reset();
    Complete(data, 0);
}
} // namespace Tests

#include "tests/usbc/DeviceMachine.h"

#include "shared/Log.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"
#include "usbc/UsbCState.h"
#include "usbc/UsbDevice.h"

#include <cstddef>
#include <cstring>
#include <thread>

using Simulator::CallPlan;
using Simulator::Journal;

namespace Tests
{
DeviceMachine::DeviceMachine()
{
    // What the first record and the first thread open stays open.
    Orvik::Shared::Log(Orvik::Shared::Level::Verbose, "", L"first record");
    std::thread([] {}).join();
    StartWatching();
    m_nHandles = TestSupport::OpenHandleCount();
}

DeviceMachine::~DeviceMachine()
{
    CallPlan::Instance().Reset();
    EXPECT_EQ(g_acpiStopEvent.Get(), nullptr);
    EXPECT_EQ(Simulator::LiveObjects::Count(), 0);
    EXPECT_LE(TestSupport::OpenHandleCount(), m_nHandles + m_nLockHandles);
}

void DeviceMachine::StartWatching()
{
    CallPlan::Instance().Reset();
    Journal::Instance().Clear();
    TestSupport::ClearLog();
}

void DeviceMachine::Fail(const char* call, DWORD error, unsigned nth)
{
    CallPlan::Instance().Fail(call, HRESULT_FROM_WIN32(error), nth);
}

void DeviceMachine::FailWithoutCode(const char* call)
{
    CallPlan::Instance().Fail(call, MAKE_HRESULT(SEVERITY_ERROR, FACILITY_WIN32, ERROR_SUCCESS));
}

std::vector<std::string> DeviceMachine::Calls()
{
    return Journal::Instance().Subjects("call");
}

nlohmann::json DeviceMachine::Details(std::string_view call, unsigned nth)
{
    for (const auto& entry : Journal::Instance().Entries())
    {
        if (entry.m_strSubject == call && --nth == 0)
            return entry.m_details;
    }
    return {};
}

unsigned DeviceMachine::CallCount(std::string_view call)
{
    return CallPlan::Instance().CallCount(call);
}

KavelMachine::KavelMachine()
{
    AddKavel(L"\\\\?\\acpi#kavl0001");
}

void KavelMachine::AddKavel(const wchar_t* path)
{
    m_tree.Add({L"ACPI\\KAVL0001\\1", L"", 0, {{g_kavelClass, path}}});
}

HubMachine::HubMachine()
{
    const DEVINST hub =
        m_tree.Add({HubId, L"{36fc9e60-c465-11cf-8056-444553540000}\\0001", 0, {{g_hubClass, m_files.m_strHubPath}}});
    m_tree.Add({L"USB\\VID_046D&PID_C077\\1",
                L"{745a17a0-74d3-11d0-b6fe-00a0c90f57da}\\0003",
                hub,
                {{g_usbClass, L"\\\\?\\mouse"}}});
    m_tree.Add({ArrivedId, ArrivedKey, hub, {{g_usbClass, L"\\\\?\\billboard"}}});
    m_files.m_lstPorts.resize(2);
    Port& port = ArrivedPort();
    port.m_status = DeviceConnected;
    port.m_strDriverKey = ArrivedKey;
    port.m_descriptor.bcdUSB = 0x201;
    port.m_descriptor.bDeviceClass = 0x11;
    port.m_descriptor.bDeviceSubClass = 0x05;
    port.m_descriptor.idProduct = 0x0BB0;
    port.m_descriptor.bcdDevice = 0x0100;
    StartWatching();
}

HubMachine::~HubMachine()
{
    // Not a leak: it is what the process keeps.
    g_strArrivedInstanceId.clear();
}

void HubMachine::Arrive(std::wstring_view name)
{
    constexpr std::size_t offset = offsetof(DEV_BROADCAST_DEVICEINTERFACE_W, dbcc_name);
    std::vector<BYTE> message(offset + (name.size() + 1) * sizeof(wchar_t));
    auto* const header = reinterpret_cast<DEV_BROADCAST_HDR*>(message.data());
    header->dbch_size = static_cast<DWORD>(message.size());
    header->dbch_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    std::memcpy(message.data() + offset, name.data(), name.size() * sizeof(wchar_t));
    CUsbDevice::Init(nullptr, header);
}
} // namespace Tests

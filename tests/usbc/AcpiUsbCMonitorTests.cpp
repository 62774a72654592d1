#include "usbc/AcpiUsbCMonitor.h"

#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/DeviceMachine.h"
#include "usbc/UsbCState.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using Tests::Answer;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pMonitor = "ACPIUSBCMonitor";

class AcpiMonitor : public Tests::KavelMachine
{
protected:
    AcpiMonitor()
    {
        g_dwAcpiMonitorThreadId = 4711;
        g_hwndMain = reinterpret_cast<HWND>(0x1234);
    }
    void Add(Answer answer) { m_files.m_lstAnswers.push_back(std::move(answer)); }
    void AddStop() { Add({.m_kind = Answer::Kind::Never}); }
};

TEST_F(AcpiMonitor, UsbCEvent_IsPostedToTheMainWindow)
{
    Add({.m_lstData = {0xA0}});
    AddStop();
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), 1u);
    EXPECT_EQ(CallCount("PostMessageW"), 1u);
    EXPECT_EQ(Details("PostMessageW"), json({{"main", true}, {"message", 0x4FE}, {"wParam", 0}, {"lParam", 0}}));
    EXPECT_THAT(LogLines(g_pMonitor),
                ElementsAre(L"TraceIn|", L"Verbose|ListenForEvent returned WAIT_OBJECT_0, with data: 0xA0",
                            L"Verbose|receive new USB_TYPEC_ACPI_EVENT_ID",
                            L"Verbose|Exited while (WAIT_OBJECT_0). dwResult: 1", L"TraceOut|1"));
    EXPECT_EQ(g_dwAcpiMonitorThreadId, 0u);
    EXPECT_EQ(g_acpiStopEvent.Get(), nullptr);
}

TEST_F(AcpiMonitor, Calls_ComeInOrder)
{
    Add({.m_lstData = {0xA0}});
    AddStop();
    ACPIUSBCMonitor(nullptr);
    EXPECT_THAT(Calls(),
                ElementsAre("SetupDiGetClassDevsW", "SetupDiEnumDeviceInterfaces", "SetupDiGetDeviceInterfaceDetailW",
                            "SetupDiGetDeviceInterfaceDetailW", "SetupDiDestroyDeviceInfoList", "CreateFileW",
                            "CreateEventW", "CreateEventW", "DeviceIoControl", "WaitForMultipleObjects", "PostMessageW",
                            "CreateEventW", "DeviceIoControl", "WaitForMultipleObjects"));
    EXPECT_EQ(Details("CreateEventW"),
              json({{"security", false}, {"manual", false}, {"signalled", false}, {"name", false}}));
    EXPECT_EQ(Details("DeviceIoControl").at("input-size"), 0);
    EXPECT_EQ(Details("DeviceIoControl").at("output-size"), 1);
}

TEST_F(AcpiMonitor, OtherBytes_AreLoggedAndNothingIsPosted)
{
    Add({.m_lstData = {0x00}});
    Add({.m_kind = Answer::Kind::AtOnce, .m_lstData = {0x9F}});
    Add({.m_lstData = {}});
    AddStop();
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), 1u);
    EXPECT_EQ(CallCount("PostMessageW"), 0u);
    EXPECT_EQ(CallCount("DeviceIoControl"), 4u);
    EXPECT_THAT(LogLines(g_pMonitor),
                ElementsAre(L"TraceIn|", L"Verbose|ListenForEvent returned WAIT_OBJECT_0, with data: 0x00",
                            L"Verbose|ListenForEvent returned WAIT_OBJECT_0, with data: 0x9F",
                            L"Verbose|ListenForEvent returned WAIT_OBJECT_0, with data: 0x00",
                            L"Verbose|Exited while (WAIT_OBJECT_0). dwResult: 1", L"TraceOut|1"));
}

// Each of the 256 bytes: one alone is an event.
TEST_F(AcpiMonitor, EveryByte_OneIsPosted)
{
    for (int byte = 0; byte < 256; ++byte)
        Add({.m_lstData = {static_cast<BYTE>(byte)}});
    AddStop();
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), 1u);
    EXPECT_EQ(CallCount("PostMessageW"), 1u);
}

TEST_F(AcpiMonitor, NoDevice_EndsWithZero)
{
    m_tree.m_lstDevices.clear();
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), 0u);
    EXPECT_THAT(LogLines(g_pMonitor),
                ElementsAre(L"TraceIn|", L"Error|OpenKavelDevice failed: 0x80070103", L"TraceOut|0"));
    EXPECT_EQ(g_dwAcpiMonitorThreadId, 0u);
    EXPECT_EQ(CallCount("CreateEventW"), 0u);
}

TEST_F(AcpiMonitor, NoStopEvent_EndsAtOnceAndKeepsTheThreadId)
{
    Fail("CreateEventW", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), 0u);
    EXPECT_THAT(LogLines(g_pMonitor), ElementsAre(L"TraceIn|", L"Information|CreateEvent failed (0x8)", L"TraceOut|0"));
    EXPECT_EQ(g_dwAcpiMonitorThreadId, 4711u);
    EXPECT_EQ(CallCount("DeviceIoControl"), 0u);
}

TEST_F(AcpiMonitor, RequestEventMissing_EndsWithItsError)
{
    Fail("CreateEventW", ERROR_NOT_ENOUGH_MEMORY, 2);
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    EXPECT_THAT(LogLines(g_pMonitor), Contains(L"Verbose|Exited while (WAIT_OBJECT_0). dwResult: 8"));
    EXPECT_EQ(g_dwAcpiMonitorThreadId, 0u);
}

TEST_F(AcpiMonitor, DeviceRefuses_EndsWithItsErrorAndIsNotAskedAgain)
{
    Add({.m_lstData = {0xA0}});
    Add({.m_kind = Answer::Kind::Refused, .m_dwError = ERROR_DEVICE_NOT_CONNECTED});
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), DWORD{ERROR_DEVICE_NOT_CONNECTED});
    EXPECT_EQ(CallCount("PostMessageW"), 1u);
    EXPECT_EQ(CallCount("DeviceIoControl"), 2u);
    EXPECT_EQ(g_acpiStopEvent.Get(), nullptr);
}

TEST_F(AcpiMonitor, PostFails_TheNextEventIsStillHandled)
{
    Add({.m_lstData = {0xA0}});
    Add({.m_lstData = {0xA0}});
    AddStop();
    Fail("PostMessageW", ERROR_NOT_ENOUGH_QUOTA);
    EXPECT_EQ(ACPIUSBCMonitor(nullptr), 1u);
    EXPECT_EQ(CallCount("PostMessageW"), 2u);
}

// What the monitor closes, with the thread id at that moment.
HANDLE g_hStopEvent = nullptr;
Tests::DeviceFiles* g_pOpened = nullptr;
decltype(CloseHandle)* g_pfnCloseHandle = nullptr;

BOOL WINAPI NoteClose(HANDLE handle)
{
    const char* const name = handle == g_hStopEvent           ? "stop event"
                             : handle == g_pOpened->m_hOpened ? "device"
                                                              : nullptr;
    if (name != nullptr)
        Simulator::Journal::Instance().Append("call", name, {{"thread", g_dwAcpiMonitorThreadId}});
    return g_pfnCloseHandle(handle);
}

TEST_F(AcpiMonitor, End_ClearsTheIdThenClosesTheEventThenTheDevice)
{
    g_pOpened = &m_files;
    m_files.m_onWait = []
    {
        g_hStopEvent = g_acpiStopEvent.Get();
        SignalAcpiMonitorStop();
    };
    AddStop();
    {
        const Simulator::Redirection<decltype(CloseHandle)> close("CloseHandle", &NoteClose);
        g_pfnCloseHandle = close.Original();
        EXPECT_EQ(ACPIUSBCMonitor(nullptr), 1u);
    }
    const std::vector<std::string> calls = Calls();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_THAT(std::vector(calls.end() - 3, calls.end()),
                ElementsAre("WaitForMultipleObjects", "stop event", "device"));
    EXPECT_EQ(Details("stop event"), json({{"thread", 0}}));
    EXPECT_EQ(Details("device"), json({{"thread", 0}}));
}

// How the thread comes into being: what the system does, and when it tells the id.
enum class Creation
{
    Refused,
    IdBeforeTheThreadEnds,
    IdAfterTheThreadHasEnded
};
Creation g_creation = Creation::Refused;

decltype(CreateThread)* g_pfnCreateThread = nullptr;

HANDLE WINAPI MakeThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start, void* argument,
                         DWORD flags, DWORD* threadId)
{
    if (start != &ACPIUSBCMonitor)
        return g_pfnCreateThread(security, stackSize, start, argument, flags, threadId);
    // A thread that could not be made leaves anything here.
    *threadId = 4712;
    if (g_creation == Creation::Refused)
        return nullptr;
    if (g_creation == Creation::IdAfterTheThreadHasEnded)
        start(argument);
    *threadId = 4713;
    return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

TEST_F(AcpiMonitor, Start_KeepsTheIdOfAThreadThatHasNotEnded)
{
    m_tree.m_lstDevices.clear();
    const Simulator::Redirection<decltype(CreateThread)> thread("CreateThread", &MakeThread);
    g_pfnCreateThread = thread.Original();
    for (const auto& [creation, id] : {std::pair{Creation::Refused, 0u},
                                       {Creation::IdBeforeTheThreadEnds, 4713u},
                                       {Creation::IdAfterTheThreadHasEnded, 0u}})
    {
        g_creation = creation;
        StartAcpiMonitor();
        EXPECT_EQ(g_dwAcpiMonitorThreadId, id);
    }
}

// The real thing: without a device the thread ends while its id is still being told.
TEST_F(AcpiMonitor, Start_ThreadEndsAtOnce_LeavesNoId)
{
    m_nLockHandles = 10;
    m_tree.m_lstDevices.clear();
    for (int i = 0; i < 200; ++i)
    {
        StartAcpiMonitor();
        for (int wait = 0; std::atomic_ref(g_dwAcpiMonitorThreadId).load() != 0 && wait < 5000; ++wait)
            Sleep(1);
        ASSERT_EQ(g_dwAcpiMonitorThreadId, 0u);
    }
    // The last thread still writes its last record.
    for (int wait = 0; LogLines(g_pMonitor).size() < 200 * 3 && wait < 5000; ++wait)
        Sleep(1);
    EXPECT_EQ(LogLines(g_pMonitor).size(), 200u * 3);
    Sleep(50);
}

class AcpiMonitorSweep : public AcpiMonitor, public testing::WithParamInterface<Simulator::Repeat>
{
};

TEST_P(AcpiMonitorSweep, EachCallFails_EndsAndLeavesNothing)
{
    unsigned calls = 0;
    for (bool hasFailed = true; hasFailed; ++calls)
    {
        m_files.m_lstAnswers.clear();
        Add({.m_lstData = {0xA0}});
        StartWatching();
        Simulator::CallPlan::Instance().FailAny(E_FAIL, calls + 1, GetParam());
        ACPIUSBCMonitor(nullptr);
        hasFailed = Simulator::CallPlan::Instance().FailedCount() != 0;
        EXPECT_EQ(g_acpiStopEvent.Get(), nullptr);
    }
    EXPECT_GT(calls, 10u);
}

INSTANTIATE_TEST_SUITE_P(OnceAndAlways, AcpiMonitorSweep,
                         testing::Values(Simulator::Repeat::Once, Simulator::Repeat::Always));

// The main thread signals at every moment of the monitor's life.
TEST_F(AcpiMonitor, StopFromAnotherThread_NeverMeetsAClosedEvent)
{
    m_nLockHandles = 10;
    m_files.m_onWait = [] {};
    for (int i = 0; i < 200; ++i)
    {
        AddStop();
        std::atomic<bool> hasEnded = false;
        std::thread monitor(
            [&]
            {
                EXPECT_EQ(ACPIUSBCMonitor(nullptr), 1u);
                hasEnded = true;
            });
        while (!hasEnded)
            SignalAcpiMonitorStop();
        monitor.join();
        m_files.m_pendingAnswer.reset();
        Simulator::Journal::Instance().Clear();
        TestSupport::ClearLog();
    }
    SignalAcpiMonitorStop();
}

TEST_F(AcpiMonitor, SignalWithoutMonitor_DoesNothing)
{
    SignalAcpiMonitorStop();
    EXPECT_THAT(Calls(), testing::IsEmpty());
    EXPECT_TRUE(TestSupport::NothingLogged());
}

// An event that nobody waited for is no event of the next monitor.
TEST_F(AcpiMonitor, StopEvent_IsNewEachTime)
{
    ASSERT_TRUE(g_acpiStopEvent.Create());
    SignalAcpiMonitorStop();
    ASSERT_TRUE(g_acpiStopEvent.Create());
    EXPECT_EQ(m_files.m_pfnWaitOne(g_acpiStopEvent.Get(), 0), DWORD{WAIT_TIMEOUT});
    SignalAcpiMonitorStop();
    EXPECT_EQ(m_files.m_pfnWaitOne(g_acpiStopEvent.Get(), 0), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(m_files.m_pfnWaitOne(g_acpiStopEvent.Get(), 0), DWORD{WAIT_TIMEOUT});
    g_acpiStopEvent.Close();
    g_acpiStopEvent.Close();
}
} // namespace

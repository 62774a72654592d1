#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/DeviceMachine.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "usbc/IoctlWrapper.h"
#include "usbc/UsbCState.h"

#include <gmock/gmock.h>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using Tests::Answer;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pOpen = "CIoctlWrapper::OpenKavelDevice";
constexpr const char* g_pListen = "CIoctlWrapper::ListenForEvent";

class KavelDevice : public Tests::KavelMachine
{
protected:
    void Add(Answer answer) { m_files.m_lstAnswers.push_back(std::move(answer)); }
    BYTE FirstByte() const { return m_device.Output().front(); }

    CIoctlWrapper m_device{1};
    // Whether the machine has a stop event while it lives.
    struct StopEvent
    {
        StopEvent() { EXPECT_TRUE(g_acpiStopEvent.Create()); }
        ~StopEvent() { g_acpiStopEvent.Close(); }
    };
    ~KavelDevice() override { m_device.Close(); }
};

TEST_F(KavelDevice, Open_OpensTheFileOnce)
{
    EXPECT_EQ(m_device.OpenKavelDevice(), S_OK);
    EXPECT_EQ(Details("CreateFileW"), json({{"path", "\\\\?\\acpi#kavl0001"},
                                            {"access", 0xC0000000},
                                            {"share", 3},
                                            {"security", false},
                                            {"disposition", 3},
                                            {"flags", 0x40000000},
                                            {"template", false}}));
    EXPECT_THAT(LogLines(g_pOpen),
                ElementsAre(L"TraceIn|",
                            L"Verbose|GetKavelDevicePath return hr = 0x0, sKavelDevicePath = \\\\?\\acpi#kavl0001",
                            L"Verbose|CreateFile passed", L"TraceOut|hr = 0x0"));
    StartWatching();
    EXPECT_EQ(m_device.OpenKavelDevice(), S_OK);
    EXPECT_THAT(Calls(), testing::IsEmpty());
    EXPECT_THAT(LogLines(g_pOpen), ElementsAre(L"TraceIn|", L"TraceOut|hr = 0x0"));
}

TEST_F(KavelDevice, Open_NoPath_OpensNothing)
{
    m_tree.m_lstDevices.clear();
    EXPECT_EQ(m_device.OpenKavelDevice(), static_cast<HRESULT>(0x80070103));
    EXPECT_EQ(CallCount("CreateFileW"), 0u);
    EXPECT_THAT(LogLines(g_pOpen),
                ElementsAre(L"TraceIn|", L"Verbose|GetKavelDevicePath return hr = 0x80070103, sKavelDevicePath = ",
                            L"TraceOut|hr = 0x80070103"));
}

TEST_F(KavelDevice, Open_FirstOfTwoInterfacesFails_OpensNothing)
{
    AddKavel(L"\\\\?\\second");
    Fail("SetupDiGetDeviceInterfaceDetailW", ERROR_ACCESS_DENIED);
    EXPECT_EQ(m_device.OpenKavelDevice(), E_ACCESSDENIED);
    EXPECT_EQ(CallCount("CreateFileW"), 0u);
}

TEST_F(KavelDevice, Open_FileRefused_IsItsErrorAndTheNextOpenTriesAgain)
{
    Fail("CreateFileW", ERROR_SHARING_VIOLATION);
    EXPECT_EQ(m_device.OpenKavelDevice(), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
    EXPECT_THAT(LogLines(g_pOpen),
                ElementsAre(L"TraceIn|",
                            L"Verbose|GetKavelDevicePath return hr = 0x0, sKavelDevicePath = \\\\?\\acpi#kavl0001",
                            L"Information|CreateFile failed, dwErr = 0x20", L"TraceOut|hr = 0x80070020"));
    EXPECT_EQ(m_device.OpenKavelDevice(), S_OK);
}

TEST_F(KavelDevice, Open_FileRefusedWithoutCode_IsUnspecifiedFailure)
{
    FailWithoutCode("CreateFileW");
    EXPECT_EQ(m_device.OpenKavelDevice(), E_FAIL);
    EXPECT_THAT(LogLines(g_pOpen), Contains(L"Information|CreateFile failed, dwErr = 0x0"));
}

TEST_F(KavelDevice, Open_FileIsNull_IsTheErrorAndNoDevice)
{
    m_files.m_nullWithError = ERROR_GEN_FAILURE;
    EXPECT_EQ(m_device.OpenKavelDevice(), HRESULT_FROM_WIN32(ERROR_GEN_FAILURE));
    EXPECT_THAT(LogLines(g_pOpen), Contains(L"Information|CreateFile failed, dwErr = 0x1f"));
    m_files.m_nullWithError.reset();
    EXPECT_EQ(m_device.OpenKavelDevice(), S_OK);
    EXPECT_EQ(CallCount("CreateFileW"), 2u);
}

TEST_F(KavelDevice, Listen_NoDevice_IsTheResultOfOpening)
{
    m_tree.m_lstDevices.clear();
    EXPECT_EQ(m_device.ListenForEvent(), 0x80070103u);
    EXPECT_EQ(CallCount("CreateEventW"), 0u);
    EXPECT_TRUE(m_device.Output().empty());
}

TEST_F(KavelDevice, Listen_NoEvent_IsItsError)
{
    Fail("CreateEventW", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(m_device.ListenForEvent(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Information|CreateEvent failed with error code: 8", L"TraceOut|8"));
    EXPECT_EQ(CallCount("DeviceIoControl"), 0u);
}

// A failure that names no error is never an answer of the device, or the caller would ask for ever. It is logged as it
// stands.
TEST_F(KavelDevice, Listen_FailuresWithoutErrorCode_AreNotSuccess)
{
    FailWithoutCode("CreateEventW");
    EXPECT_EQ(m_device.ListenForEvent(), DWORD{ERROR_GEN_FAILURE});
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Information|CreateEvent failed with error code: 0", L"TraceOut|31"));
    TestSupport::ClearLog();
    Add({.m_kind = Answer::Kind::Refused, .m_dwError = ERROR_SUCCESS});
    EXPECT_EQ(m_device.ListenForEvent(), DWORD{ERROR_GEN_FAILURE});
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Verbose|CreateEvent passed",
                            L"Information|Expected ERROR_IO_PENDING (997) from IOCTL call, but got: 0",
                            L"TraceOut|31"));
}

TEST_F(KavelDevice, Listen_AtOnce_IsZeroWithTheAnswer)
{
    Add({.m_kind = Answer::Kind::AtOnce, .m_lstData = {0xA0}});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_THAT(m_device.Output(), ElementsAre(0xA0));
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Verbose|CreateEvent passed", L"Verbose|dwErr = 0x0", L"TraceOut|0"));
    EXPECT_EQ(CallCount("WaitForSingleObject"), 0u);
}

TEST_F(KavelDevice, Listen_Calls_HaveTheirParameters)
{
    const StopEvent stop;
    StartWatching();
    Add({.m_lstData = {0xA0}});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_EQ(Details("CreateEventW"),
              json({{"security", false}, {"manual", false}, {"signalled", false}, {"name", false}}));
    EXPECT_EQ(Details("DeviceIoControl"), json({{"code", 0x808433A8},
                                                {"input", false},
                                                {"input-size", 0},
                                                {"output", true},
                                                {"output-size", 1},
                                                {"same", false},
                                                {"returned", 0},
                                                {"overlapped", true},
                                                {"overlapped-zero", true}}));
    EXPECT_EQ(Details("WaitForMultipleObjects"),
              json({{"count", 2}, {"second", "stop"}, {"all", false}, {"milliseconds", INFINITE}}));
}

TEST_F(KavelDevice, Listen_InputAndNoOutput_AreSentAsTheyAre)
{
    CIoctlWrapper device(0, {1, 2, 3});
    Add({.m_lstData = {0xA0}});
    EXPECT_EQ(device.ListenForEvent(), 0u);
    const json details = Details("DeviceIoControl");
    EXPECT_EQ(details.at("input"), true);
    EXPECT_EQ(details.at("input-size"), 3);
    EXPECT_EQ(details.at("output"), false);
    EXPECT_EQ(details.at("output-size"), 0);
    EXPECT_TRUE(device.Output().empty());
}

TEST_F(KavelDevice, Listen_PendingWithStopEvent_WaitsForBoth)
{
    const StopEvent stop;
    Add({.m_lstData = {0xA0}});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_EQ(FirstByte(), 0xA0);
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Verbose|CreateEvent passed", L"Verbose|Waiting to get signaled...",
                            L"Verbose|Waiting WaitForMultipleObjects", L"Verbose|Kavel event signaled!",
                            L"Verbose|dwErr = 0x0", L"TraceOut|0"));
}

TEST_F(KavelDevice, Listen_PendingWithoutStopEvent_WaitsForTheRequest)
{
    Add({.m_lstData = {0x17}});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_EQ(FirstByte(), 0x17);
    EXPECT_EQ(Details("WaitForSingleObject"), json({{"milliseconds", INFINITE}}));
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Verbose|CreateEvent passed", L"Verbose|Waiting to get signaled...",
                            L"Verbose|Waiting WaitForSingleObject", L"Verbose|Event signaled!", L"Verbose|dwErr = 0x0",
                            L"TraceOut|0"));
}

TEST_F(KavelDevice, Listen_OldAnswer_IsWipedOut)
{
    Add({.m_lstData = {0xA0}});
    Add({.m_lstData = {}});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_THAT(m_device.Output(), ElementsAre(0));
}

TEST_F(KavelDevice, Listen_LongAnswer_IsCutToItsSize)
{
    Add({.m_lstData = std::vector<BYTE>(100, 0xA0)});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_THAT(m_device.Output(), ElementsAre(0xA0));
}

TEST_F(KavelDevice, Listen_Refused_IsItsError)
{
    Add({.m_kind = Answer::Kind::Refused, .m_dwError = ERROR_ACCESS_DENIED});
    EXPECT_EQ(m_device.ListenForEvent(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Verbose|CreateEvent passed",
                            L"Information|Expected ERROR_IO_PENDING (997) from IOCTL call, but got: 5", L"TraceOut|5"));
    EXPECT_EQ(CallCount("WaitForSingleObject"), 0u);
}

// Whatever a pending request ends with, the device answered.
TEST_F(KavelDevice, Listen_PendingFails_IsAnAnswerWithoutData)
{
    for (const DWORD status : {0xC0000120u, 0xC0000056u, 0xC000000Eu, 0x80000005u})
    {
        Add({.m_lstData = {}, .m_status = static_cast<LONG>(status)});
        EXPECT_EQ(m_device.ListenForEvent(), 0u) << status;
        EXPECT_EQ(FirstByte(), 0);
    }
}

TEST_F(KavelDevice, Listen_StopWhilePending_IsOne)
{
    const StopEvent stop;
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 1u);
    EXPECT_THAT(LogLines(g_pListen),
                ElementsAre(L"TraceIn|", L"Verbose|CreateEvent passed", L"Verbose|Waiting to get signaled...",
                            L"Verbose|Waiting WaitForMultipleObjects", L"Verbose|Secondary event signaled!",
                            L"Verbose|dwErr = 0x1", L"TraceOut|1"));
}

// The answer counts first; the stop is not lost.
TEST_F(KavelDevice, Listen_StopAndAnswerAtOnce_IsZeroThenOne)
{
    const StopEvent stop;
    m_files.m_onWait = [this]
    {
        SignalAcpiMonitorStop();
        SetEvent(m_files.m_pPending->hEvent);
        m_files.FinishLate({0xA0});
    };
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_EQ(FirstByte(), 0xA0);
    m_files.m_onWait = [] {};
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 1u);
}

TEST_F(KavelDevice, Listen_WaitFails_IsItsResult)
{
    {
        const StopEvent stop;
        Add({.m_kind = Answer::Kind::Never});
        Fail("WaitForMultipleObjects", ERROR_INVALID_HANDLE);
        EXPECT_EQ(m_device.ListenForEvent(), WAIT_FAILED);
        EXPECT_THAT(LogLines(g_pListen), Contains(L"Verbose|dwErr = 0xffffffff"));
    }
    Add({.m_kind = Answer::Kind::Never});
    Fail("WaitForSingleObject", ERROR_INVALID_HANDLE);
    EXPECT_EQ(m_device.ListenForEvent(), WAIT_FAILED);
}

// The system writes to a request that was left pending after the device was closed: its memory is still there.
TEST_F(KavelDevice, Close_RequestStillPending_ItsMemoryStays)
{
    const StopEvent stop;
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 1u);
    const std::size_t blocks = LiveHeapBlocks();
    m_device.Close();
    EXPECT_EQ(LiveHeapBlocks(), blocks);
    const auto* output = static_cast<const BYTE*>(m_files.m_pPendingOutput);
    m_files.FinishLate({0xA0});
    EXPECT_EQ(*output, 0xA0);
}

TEST_F(KavelDevice, Close_RequestEndedMeanwhile_GivesItsMemoryBack)
{
    const StopEvent stop;
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 1u);
    m_files.FinishLate({0xA0});
    const std::size_t blocks = LiveHeapBlocks();
    m_device.Close();
    EXPECT_LT(LiveHeapBlocks(), blocks);
}

TEST_F(KavelDevice, Listen_AfterOneThatIsStillPending_UsesOtherMemory)
{
    const StopEvent stop;
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 1u);
    const void* const first = m_files.m_pPending;
    Add({.m_lstData = {0xA0}});
    m_files.m_pPending = nullptr;
    Add({.m_kind = Answer::Kind::Never});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    EXPECT_EQ(m_device.ListenForEvent(), 1u);
    EXPECT_NE(m_files.m_pPending, first);
}

TEST_F(KavelDevice, Listen_NoMemory_IsOutOfMemory)
{
    ASSERT_EQ(m_device.OpenKavelDevice(), S_OK);
    CIoctlWrapper device(100000);
    const AllocationFault fault(1, 100000);
    EXPECT_EQ(device.ListenForEvent(), static_cast<DWORD>(E_OUTOFMEMORY));
}

TEST_F(KavelDevice, Listen_ThousandTimes_LeavesNothing)
{
    for (int i = 0; i < 3; ++i)
        Add({.m_lstData = {0xA0}});
    EXPECT_EQ(m_device.ListenForEvent(), 0u);
    StartWatching();
    const std::size_t blocks = LiveHeapBlocks();
    for (int i = 0; i < 1000; ++i)
    {
        m_files.m_lstAnswers.assign(1, Answer{.m_lstData = {0xA0}});
        ASSERT_EQ(m_device.ListenForEvent(), 0u);
        StartWatching();
    }
    EXPECT_NEAR(static_cast<double>(LiveHeapBlocks()), static_cast<double>(blocks), 20);
}
} // namespace

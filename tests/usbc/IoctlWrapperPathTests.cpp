#include "simulator/doubles/JournalText.h"
#include "simulator/model/CallPlan.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/DeviceMachine.h"
#include "usbc/IoctlWrapper.h"

#include <gmock/gmock.h>

using nlohmann::json;
using testing::ElementsAre;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pFunction = "CIoctlWrapper::GetKavelDevicePath";
constexpr HRESULT g_hrNoMoreItems = static_cast<HRESULT>(0x80070103);

class KavelPath : public Tests::KavelMachine
{
protected:
    HRESULT Get() { return m_device.GetKavelDevicePath(m_strPath); }

    CIoctlWrapper m_device{1};
    std::wstring m_strPath = L"unchanged";
};

TEST_F(KavelPath, OneInterface_GivesItsPath)
{
    EXPECT_EQ(Get(), S_OK);
    EXPECT_EQ(m_strPath, L"\\\\?\\acpi#kavl0001");
    EXPECT_THAT(LogLines(g_pFunction),
                ElementsAre(L"TraceIn|", L"Verbose|get hardwareDeviceInfo passed",
                            L"Verbose|Found sKavelDevicePath = 0\\\\?\\acpi#kavl0001", L"TraceOut|hr: 0x00000000"));
}

TEST_F(KavelPath, Calls_ComeInOrderWithTheirParameters)
{
    ASSERT_EQ(Get(), S_OK);
    EXPECT_THAT(Calls(),
                ElementsAre("SetupDiGetClassDevsW", "SetupDiEnumDeviceInterfaces", "SetupDiGetDeviceInterfaceDetailW",
                            "SetupDiGetDeviceInterfaceDetailW", "SetupDiDestroyDeviceInfoList"));
    const std::string kavelClass = "{38E184EA-2138-468C-AEE5-1280532B5C2D}";
    EXPECT_EQ(Details("SetupDiGetClassDevsW"),
              json({{"class", kavelClass}, {"enumerator", false}, {"window", false}, {"flags", 0x12}}));
    EXPECT_EQ(Details("SetupDiEnumDeviceInterfaces"), json({{"device", false}, {"class", kavelClass}, {"index", 0}}));
    EXPECT_EQ(Details("SetupDiGetDeviceInterfaceDetailW"), json({{"buffer", false}, {"size", 0}, {"size-field", 0}}));
    const unsigned size = 4 + (17 + 1) * 2;
    EXPECT_EQ(Details("SetupDiGetDeviceInterfaceDetailW", 2),
              json({{"buffer", true}, {"size", size}, {"size-field", 8}}));
}

TEST_F(KavelPath, NoSet_IsItsError)
{
    Fail("SetupDiGetClassDevsW", ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
    EXPECT_EQ(m_strPath, L"unchanged");
    EXPECT_THAT(LogLines(g_pFunction),
                ElementsAre(L"TraceIn|", L"Information|failed to get hardwareDeviceInfo, dwErr = 0x5",
                            L"TraceOut|hr: 0x80070005"));
    EXPECT_THAT(Calls(), ElementsAre("SetupDiGetClassDevsW"));
}

TEST_F(KavelPath, NoSetWithoutCode_IsUnspecifiedFailure)
{
    FailWithoutCode("SetupDiGetClassDevsW");
    EXPECT_EQ(Get(), E_FAIL);
    EXPECT_THAT(LogLines(g_pFunction),
                ElementsAre(L"TraceIn|", L"Information|failed to get hardwareDeviceInfo, dwErr = 0x0",
                            L"TraceOut|hr: 0x80004005"));
}

TEST_F(KavelPath, NoInterface_IsNoMoreItems)
{
    m_tree.m_lstDevices.clear();
    EXPECT_EQ(Get(), g_hrNoMoreItems);
    EXPECT_THAT(LogLines(g_pFunction),
                ElementsAre(L"TraceIn|", L"Verbose|get hardwareDeviceInfo passed", L"TraceOut|hr: 0x80070103"));
}

TEST_F(KavelPath, SizeQueryFails_ThatErrorEndsTheEnumeration)
{
    Fail("SetupDiGetDeviceInterfaceDetailW", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(CallCount("SetupDiEnumDeviceInterfaces"), 2u);
    EXPECT_EQ(m_strPath, L"unchanged");
}

// The device vanished between the two calls.
TEST_F(KavelPath, DetailFails_ThatErrorEndsTheEnumeration)
{
    Fail("SetupDiGetDeviceInterfaceDetailW", ERROR_NO_SUCH_DEVICE_INTERFACE, 2);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_NO_SUCH_DEVICE_INTERFACE));
    EXPECT_EQ(m_strPath, L"unchanged");
}

TEST_F(KavelPath, FirstOfTwoFails_FailsAlthoughThePathIsFound)
{
    AddKavel(L"\\\\?\\second");
    Fail("SetupDiGetDeviceInterfaceDetailW", ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
    EXPECT_EQ(m_strPath, L"\\\\?\\second");
    EXPECT_THAT(LogLines(g_pFunction),
                ElementsAre(L"TraceIn|", L"Verbose|get hardwareDeviceInfo passed",
                            L"Verbose|Found sKavelDevicePath = 0\\\\?\\second", L"TraceOut|hr: 0x80070005"));
}

TEST_F(KavelPath, FirstOfTwoVanishesAfterItsSize_FailsAlthoughThePathIsFound)
{
    AddKavel(L"\\\\?\\second");
    Fail("SetupDiGetDeviceInterfaceDetailW", ERROR_NO_SUCH_DEVICE_INTERFACE, 2);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_NO_SUCH_DEVICE_INTERFACE));
    EXPECT_EQ(m_strPath, L"\\\\?\\second");
    EXPECT_EQ(CallCount("SetupDiGetDeviceInterfaceDetailW"), 4u);
}

TEST_F(KavelPath, SecondOfTwoWouldFail_IsNotLookedAt)
{
    AddKavel(L"\\\\?\\second");
    Fail("SetupDiGetDeviceInterfaceDetailW", ERROR_ACCESS_DENIED, 3);
    EXPECT_EQ(Get(), S_OK);
    EXPECT_EQ(CallCount("SetupDiEnumDeviceInterfaces"), 1u);
}

TEST_F(KavelPath, SizeQueryWorksWithoutBuffer_IsUnspecifiedFailure)
{
    m_tree.m_bSizeQueryWorks = true;
    EXPECT_EQ(Get(), E_FAIL);
    EXPECT_EQ(m_strPath, L"unchanged");
}

TEST_F(KavelPath, EmptyPath_IsUnspecifiedFailure)
{
    m_tree.m_lstDevices.front().m_lstInterfaces.front().m_strPath.clear();
    EXPECT_EQ(Get(), E_FAIL);
    EXPECT_EQ(m_strPath, L"unchanged");
}

// Both calls work and give nothing: the code that an earlier call left is the result then.
TEST_F(KavelPath, WorksWithoutResult_OldErrorCode_IsTheResult)
{
    m_tree.m_dwStaleError = ERROR_FILE_NOT_FOUND;
    m_tree.m_lstDevices.front().m_lstInterfaces.front().m_strPath.clear();
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    m_tree.m_bSizeQueryWorks = true;
    m_tree.m_dwStaleError = ERROR_PATH_NOT_FOUND;
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(CallCount("SetupDiGetDeviceInterfaceDetailW"), 3u);
    EXPECT_EQ(m_strPath, L"unchanged");
}

TEST_F(KavelPath, SizeAbove64KiB_IsAFailedQuery)
{
    m_tree.m_detailSize = 0x10000;
    EXPECT_EQ(Get(), S_OK);
    EXPECT_EQ(m_strPath, L"\\\\?\\acpi#kavl0001");
    m_strPath = L"unchanged";
    for (const DWORD size : {0x10001u, 0x7FFFFFFFu, 0xFFFFFFFFu})
    {
        StartWatching();
        m_tree.m_detailSize = size;
        EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_INVALID_DATA)) << size;
        EXPECT_EQ(CallCount("SetupDiGetDeviceInterfaceDetailW"), 1u) << size;
    }
    EXPECT_EQ(m_strPath, L"unchanged");
}

TEST_F(KavelPath, SizeOfNothing_StaysWithinTheStructure)
{
    for (const DWORD size : {0u, 1u, 4u, 6u, 7u})
    {
        m_tree.m_detailSize = size;
        EXPECT_EQ(Get(), E_FAIL) << size;
    }
}

// Counted as an error, but as no interface that was seen.
TEST_F(KavelPath, EnumerationFails_GoesOnWithTheNext)
{
    AddKavel(L"\\\\?\\second");
    Fail("SetupDiEnumDeviceInterfaces", ERROR_INVALID_DATA);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(m_strPath, L"\\\\?\\second");
}

TEST_F(KavelPath, EnumerationFailsThenEnds_IsNoMoreItems)
{
    Fail("SetupDiEnumDeviceInterfaces", ERROR_INVALID_DATA);
    EXPECT_EQ(Get(), g_hrNoMoreItems);
}

TEST_F(KavelPath, EnumerationFailsAlways_EndsAfterTenWithThatError)
{
    Simulator::CallPlan::Instance().Fail("SetupDiEnumDeviceInterfaces", HRESULT_FROM_WIN32(ERROR_INVALID_DATA), 1,
                                         Simulator::Repeat::Always);
    EXPECT_EQ(Get(), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    EXPECT_EQ(CallCount("SetupDiEnumDeviceInterfaces"), 10u);
    EXPECT_EQ(CallCount("SetupDiGetDeviceInterfaceDetailW"), 0u);
    EXPECT_EQ(m_strPath, L"unchanged");
}

TEST_F(KavelPath, TenInterfacesFail_TheEleventhIsNotLookedAt)
{
    m_tree.m_lstDevices.clear();
    for (int i = 0; i < 10; ++i)
        AddKavel(L"");
    AddKavel(L"\\\\?\\eleventh");
    EXPECT_EQ(Get(), E_FAIL);
    EXPECT_EQ(CallCount("SetupDiEnumDeviceInterfaces"), 10u);
    EXPECT_EQ(m_strPath, L"unchanged");
}

TEST_F(KavelPath, TenthInterfaceWorks_IsFound)
{
    m_tree.m_lstDevices.clear();
    for (int i = 0; i < 9; ++i)
        AddKavel(L"");
    AddKavel(L"\\\\?\\tenth");
    EXPECT_EQ(Get(), E_FAIL);
    EXPECT_EQ(m_strPath, L"\\\\?\\tenth");
}

TEST_F(KavelPath, NoMemory_IsOutOfMemory)
{
    m_tree.m_detailSize = 40000;
    const AllocationFault fault(1, 40000);
    EXPECT_EQ(Get(), E_OUTOFMEMORY);
    EXPECT_EQ(m_strPath, L"unchanged");
}
} // namespace

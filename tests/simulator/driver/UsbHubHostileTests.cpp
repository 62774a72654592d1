#include "tests/simulator/driver/DeviceFilesTest.h"
#include "tests/simulator/driver/HubClient.h"

#include <algorithm>

namespace
{
using Simulator::Devices::PortAnswers;
using Simulator::Devices::PortCount;

constexpr LONG g_noSuchDevice = static_cast<LONG>(0xC000000E);
constexpr DWORD g_dwNoSuchDevice = 433; // that of Windows

PortAnswers Connected(ULONG port, const std::wstring& driverKey)
{
    PortAnswers answers{};
    answers.m_nPort = port;
    answers.m_nConnectionStatus = DeviceConnected;
    answers.m_nDriverKeyAnswers = 0xFFFFFFFF;
    std::copy(driverKey.begin(), driverKey.end(), answers.m_szDriverKey);
    return answers;
}

class HubAnswer : public DeviceFilesTest
{
protected:
    HubClient m_hub;
};

TEST_F(HubAnswer, OtherNumberOfPorts_IsTold)
{
    for (const ULONG count : {ULONG{0}, ULONG{1}, ULONG{255}})
    {
        EXPECT_EQ(m_driver.SetReportedPorts(count), DWORD{ERROR_SUCCESS});
        USB_NODE_INFORMATION node{};
        EXPECT_EQ(m_hub.AskNode(node), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(node.u.HubInformation.HubDescriptor.bNumberOfPorts, count);
    }
    EXPECT_EQ(m_driver.SetReportedPorts(256), DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(HubAnswer, ConnectionFails_WithAnyStatus)
{
    PortAnswers answers = Connected(2, L"key");
    answers.m_nConnectionFailure = g_noSuchDevice;
    EXPECT_EQ(m_driver.SetPortAnswers(answers), DWORD{ERROR_SUCCESS});
    USB_NODE_CONNECTION_INFORMATION_EX information{};
    EXPECT_EQ(m_hub.AskConnection(2, information), g_dwNoSuchDevice);
    EXPECT_EQ(m_hub.AskConnection(1, information), DWORD{ERROR_SUCCESS});
}

TEST_F(HubAnswer, DeviceVanishesBetweenTwoRequests_TheSecondFails)
{
    PortAnswers answers = Connected(1, L"key");
    answers.m_nDriverKeyAnswers = 1;
    answers.m_nDriverKeyFailure = g_noSuchDevice;
    EXPECT_EQ(m_driver.SetPortAnswers(answers), DWORD{ERROR_SUCCESS});
    ULONG bytes = 0;
    EXPECT_EQ(m_hub.AskDriverKeyLength(1, bytes), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(bytes, 8u + 4 * sizeof(wchar_t));
    std::wstring name;
    EXPECT_EQ(m_hub.AskDriverKey(1, bytes, name), g_dwNoSuchDevice);
}

TEST_F(HubAnswer, DeclaredLength_IsTold)
{
    PortAnswers answers = Connected(1, L"key");
    answers.m_nDriverKeyLength = 0x7FFFFFFF;
    EXPECT_EQ(m_driver.SetPortAnswers(answers), DWORD{ERROR_SUCCESS});
    ULONG bytes = 0;
    EXPECT_EQ(m_hub.AskDriverKeyLength(1, bytes), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(bytes, 0x7FFFFFFFu);
}

TEST_F(HubAnswer, LongDriverKey_IsCutToTheRoom)
{
    // Fills the place to the last character: there is no terminating zero.
    const std::wstring key(Simulator::Devices::DriverKeyRoom, L'k');
    EXPECT_EQ(m_driver.SetPortAnswers(Connected(1, key)), DWORD{ERROR_SUCCESS});
    std::wstring name;
    EXPECT_EQ(m_hub.AskDriverKey(1, 8 + 10 * sizeof(wchar_t), name), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(name, key.substr(0, 10));
    EXPECT_EQ(m_hub.AskDriverKey(1, 4096, name), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(name, key);
}

TEST_F(HubAnswer, OtherConnectionStatus_HasNoDescriptor)
{
    PortAnswers answers = Connected(3, L"key");
    answers.m_nConnectionStatus = DeviceFailedEnumeration;
    answers.m_nDeviceClass = 0x11;
    EXPECT_EQ(m_driver.SetPortAnswers(answers), DWORD{ERROR_SUCCESS});
    USB_NODE_CONNECTION_INFORMATION_EX information{};
    EXPECT_EQ(m_hub.AskConnection(3, information), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(information.ConnectionStatus, DeviceFailedEnumeration);
    EXPECT_EQ(information.DeviceDescriptor.bDeviceClass, 0);
}

TEST_F(HubAnswer, PortThatIsNone_TakesNoAnswers)
{
    EXPECT_EQ(m_driver.SetPortAnswers(Connected(0, L"")), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(m_driver.SetPortAnswers(Connected(PortCount + 1, L"")), DWORD{ERROR_INVALID_PARAMETER});
}
} // namespace

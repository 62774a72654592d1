#include "simulator/devices/DeviceKeys.h"
#include "tests/simulator/driver/DeviceFilesTest.h"
#include "tests/simulator/driver/HubClient.h"

namespace
{
using Simulator::Devices::DriverKeys;
using Simulator::Devices::PortCount;

constexpr ULONG g_billboardClass = 0x11;

class HubRequest : public DeviceFilesTest
{
protected:
    HubRequest() { EXPECT_TRUE(m_hub.IsOpen()); }

    HubClient m_hub;
};

TEST_F(HubRequest, AskedForItself_TellsItsPorts)
{
    USB_NODE_INFORMATION node{};
    EXPECT_EQ(m_hub.AskNode(node), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_hub.Size(), 76u);
    EXPECT_EQ(node.NodeType, UsbHub);
    EXPECT_EQ(node.u.HubInformation.HubDescriptor.bNumberOfPorts, PortCount);
    EXPECT_EQ(m_driver.Count().m_nHubOpens, 1u);
    EXPECT_EQ(m_driver.Count().m_nNodeRequests, 1u);
}

TEST_F(HubRequest, EmptyPort_HasNoDeviceAndNoDriverKey)
{
    for (ULONG port = 1; port <= PortCount; ++port)
    {
        USB_NODE_CONNECTION_INFORMATION_EX information{};
        EXPECT_EQ(m_hub.AskConnection(port, information), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(information.ConnectionIndex, port);
        EXPECT_EQ(information.ConnectionStatus, NoDeviceConnected);
        EXPECT_EQ(information.DeviceDescriptor.bLength, 0);
        ULONG bytes = 0;
        EXPECT_EQ(m_hub.AskDriverKeyLength(port, bytes), DWORD{ERROR_NOT_FOUND});
    }
    EXPECT_EQ(m_driver.Count().m_nConnectionRequests, PortCount);
    EXPECT_EQ(m_driver.Count().m_nDriverKeyRequests, PortCount);
}

TEST_F(HubRequest, PluggedPort_TellsTheDevice)
{
    EXPECT_EQ(m_driver.PlugDevice(2, g_billboardClass), DWORD{ERROR_SUCCESS});
    USB_NODE_CONNECTION_INFORMATION_EX information{};
    EXPECT_EQ(m_hub.AskConnection(2, information), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_hub.Size(), 35u);
    EXPECT_EQ(information.ConnectionStatus, DeviceConnected);
    EXPECT_EQ(information.DeviceDescriptor.bLength, 18);
    EXPECT_EQ(information.DeviceDescriptor.bDeviceClass, g_billboardClass);
    EXPECT_EQ(information.DeviceDescriptor.bcdUSB, 0x0201);
    EXPECT_EQ(information.DeviceDescriptor.idVendor, 0x1209);
    EXPECT_EQ(information.DeviceDescriptor.idProduct, 2);
    EXPECT_EQ(information.NumberOfOpenPipes, 0u);
    for (const ULONG empty : {1u, 3u, 4u})
    {
        EXPECT_EQ(m_hub.AskConnection(empty, information), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(information.ConnectionStatus, NoDeviceConnected);
    }
}

TEST_F(HubRequest, PluggedPort_TellsItsDriverKeyInTwoSteps)
{
    EXPECT_EQ(m_driver.PlugDevice(3, 0), DWORD{ERROR_SUCCESS});
    ULONG bytes = 0;
    EXPECT_EQ(m_hub.AskDriverKeyLength(3, bytes), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_hub.Size(), 10u);
    const std::wstring expected = DriverKeys[2];
    EXPECT_EQ(bytes, 8 + (expected.size() + 1) * sizeof(wchar_t));
    std::wstring name;
    EXPECT_EQ(m_hub.AskDriverKey(3, bytes, name), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(name, expected + L'\0');
}

TEST_F(HubRequest, DriverKey_IsThatOfTheDeviceInTheTree)
{
    for (ULONG port = 1; port <= PortCount; ++port)
    {
        EXPECT_EQ(m_driver.PlugDevice(port, 0), DWORD{ERROR_SUCCESS});
        const DeviceInformationSet devices(&UsbInterface, DIGCF_DEVICEINTERFACE | DIGCF_ALLCLASSES);
        SP_DEVINFO_DATA device{};
        DWORD index = 0;
        while (devices.EnumDevice(index, device) && devices.InstanceId(device) != Simulator::UsbInstanceId(port))
            ++index;
        DWORD bytes = 0;
        EXPECT_FALSE(devices.DriverKeySize(device, bytes));
        std::wstring driverKey;
        ASSERT_TRUE(devices.ReadDriverKey(device, bytes, driverKey));
        EXPECT_EQ(driverKey, DriverKeys[port - 1]);
    }
}

TEST_F(HubRequest, PortOutOfRange_IsAnInvalidParameter)
{
    for (const ULONG port : {ULONG{0}, PortCount + 1, ULONG{255}, ULONG{0xFFFFFFFF}})
    {
        USB_NODE_CONNECTION_INFORMATION_EX information{};
        EXPECT_EQ(m_hub.AskConnection(port, information), DWORD{ERROR_INVALID_PARAMETER});
        ULONG bytes = 0;
        EXPECT_EQ(m_hub.AskDriverKeyLength(port, bytes), DWORD{ERROR_INVALID_PARAMETER});
        std::wstring name;
        EXPECT_EQ(m_hub.AskDriverKey(port, 200, name), DWORD{ERROR_INVALID_PARAMETER});
        EXPECT_NE(m_driver.PlugDevice(port, 0), DWORD{ERROR_SUCCESS});
        EXPECT_NE(m_driver.UnplugDevice(port), DWORD{ERROR_SUCCESS});
    }
}

TEST_F(HubRequest, TooLittleRoom_IsSaid)
{
    BYTE small[9]{};
    EXPECT_EQ(m_hub.Send(IOCTL_USB_GET_NODE_INFORMATION, small, sizeof(small)), DWORD{ERROR_INSUFFICIENT_BUFFER});
    small[0] = 1;
    EXPECT_EQ(m_hub.Send(IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX, small, sizeof(small)),
              DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(m_hub.Send(IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME, small, sizeof(small)),
              DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(m_hub.Send(IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX, small, 3), DWORD{ERROR_INVALID_FUNCTION});
}

TEST_F(HubRequest, OtherCode_IsNoFunctionOfTheHub)
{
    BYTE buffer[100]{};
    EXPECT_EQ(m_hub.Send(IOCTL_USB_GET_NODE_INFORMATION + 4, buffer, sizeof(buffer)), DWORD{ERROR_INVALID_FUNCTION});
}

TEST_F(HubRequest, UnpluggedPort_IsEmptyAgain)
{
    EXPECT_EQ(m_driver.PlugDevice(1, g_billboardClass), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.UnplugDevice(1), DWORD{ERROR_SUCCESS});
    USB_NODE_CONNECTION_INFORMATION_EX information{};
    EXPECT_EQ(m_hub.AskConnection(1, information), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(information.ConnectionStatus, NoDeviceConnected);
    EXPECT_EQ(m_driver.UnplugDevice(1), DWORD{ERROR_SUCCESS});
}
} // namespace

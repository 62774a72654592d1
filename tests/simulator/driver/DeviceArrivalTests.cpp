#include "simulator/devices/DeviceKeys.h"
#include "tests/simulator/driver/ArrivalWindow.h"
#include "tests/simulator/driver/DeviceFilesTest.h"

#include <dbt.h>

namespace
{
using Simulator::UsbInstanceId;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

using DeviceArrival = DeviceFilesTest;

std::wstring Upper(std::wstring text)
{
    CharUpperW(text.data());
    return text;
}

// "\\?\usb#vid_1209&pid_0001#orvik#{a5dcbf10-...}" in upper case.
std::wstring InterfaceName(ULONG port)
{
    std::wstring id = UsbInstanceId(port);
    for (wchar_t& c : id)
        c = c == L'\\' ? L'#' : c;
    return Upper(L"\\\\?\\" + id + L"#{a5dcbf10-6530-11d2-901f-00c04fb951ed}");
}

TEST_F(DeviceArrival, NothingPlugged_HubAndEventDeviceArePresentAlone)
{
    EXPECT_THAT(PresentDevices(UsbInterface), IsEmpty());
    EXPECT_THAT(PresentDevices(HubInterface), ElementsAre(Simulator::HubInstanceId()));
    EXPECT_THAT(PresentDevices(AcpiInterface), ElementsAre(Simulator::AcpiInstanceId()));
}

TEST_F(DeviceArrival, Plugged_IsPresentAndTold)
{
    ArrivalWindow window;
    EXPECT_EQ(m_driver.PlugDevice(2, 0x11), DWORD{ERROR_SUCCESS});
    const auto& changes = window.WaitFor(1, Limit);
    ASSERT_THAT(changes, SizeIs(1));
    EXPECT_EQ(changes[0].m_event, WPARAM{DBT_DEVICEARRIVAL});
    EXPECT_EQ(Upper(changes[0].m_strName), InterfaceName(2));
    EXPECT_THAT(PresentDevices(UsbInterface), ElementsAre(UsbInstanceId(2)));
}

TEST_F(DeviceArrival, Unplugged_IsGoneAndTold)
{
    ArrivalWindow window;
    EXPECT_EQ(m_driver.PlugDevice(1, 0), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.UnplugDevice(1), DWORD{ERROR_SUCCESS});
    const auto& changes = window.WaitFor(2, Limit);
    ASSERT_THAT(changes, SizeIs(2));
    EXPECT_EQ(changes[1].m_event, WPARAM{DBT_DEVICEREMOVECOMPLETE});
    EXPECT_EQ(Upper(changes[1].m_strName), InterfaceName(1));
    EXPECT_THAT(PresentDevices(UsbInterface), IsEmpty());
}

TEST_F(DeviceArrival, PortIsTaken_SecondDeviceIsRefused)
{
    EXPECT_EQ(m_driver.PlugDevice(1, 0), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.PlugDevice(1, 0x11), DWORD{ERROR_BUSY});
    EXPECT_EQ(m_driver.PlugDevice(4, 0x11), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(PresentDevices(UsbInterface), UnorderedElementsAre(UsbInstanceId(1), UsbInstanceId(4)));
}

TEST_F(DeviceArrival, DriverIsReset_DevicesAreGone)
{
    EXPECT_EQ(m_driver.PlugDevice(1, 0), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.PlugDevice(3, 0), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.Reset(), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(PresentDevices(UsbInterface), IsEmpty());
}

TEST_F(DeviceArrival, ManyTimes_EachIsToldOnceAndInOrder)
{
    constexpr std::size_t cycles = 25;
    ArrivalWindow window;
    for (std::size_t i = 0; i < cycles; ++i)
    {
        ASSERT_EQ(m_driver.PlugDevice(1, 0x11), DWORD{ERROR_SUCCESS});
        ASSERT_EQ(m_driver.UnplugDevice(1), DWORD{ERROR_SUCCESS});
        ASSERT_THAT(window.WaitFor(2 * i + 2, Limit), SizeIs(2 * i + 2));
    }
    const auto& changes = window.WaitFor(2 * cycles + 1, Short);
    ASSERT_THAT(changes, SizeIs(2 * cycles));
    for (std::size_t i = 0; i < 2 * cycles; ++i)
        EXPECT_EQ(changes[i].m_event, i % 2 == 0 ? WPARAM{DBT_DEVICEARRIVAL} : WPARAM{DBT_DEVICEREMOVECOMPLETE});
}
} // namespace

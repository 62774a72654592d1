#include "simulator/devices/DriverInstallation.h"
#include "tests/simulator/driver/DeviceFilesTest.h"

#include <system_error>

namespace
{
using DriverInstallation = DeviceFilesTest;

TEST_F(DriverInstallation, RunsAlready_StaysAsItIs)
{
    EXPECT_EQ(m_driver.CompleteRequest(1), DWORD{ERROR_SUCCESS});
    // What does not exist is not looked for.
    EXPECT_NO_THROW(Simulator::InstallDriver(L"Z:\\no\\such\\driver.sys"));
    EXPECT_TRUE(Simulator::StartInstalledDriver());
    EXPECT_EQ(m_driver.Count().m_nQueued, 1u);
}

TEST_F(DriverInstallation, TwoClients_SeeTheSameDevices)
{
    Simulator::DeviceDriver second;
    ASSERT_TRUE(second);
    EXPECT_EQ(second.CompleteRequest(1), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.Count().m_nQueued, 1u);
}

TEST_F(DriverInstallation, ClientThatWaitsIsClosed_OthersGoOn)
{
    {
        Simulator::DeviceDriver second;
        EXPECT_EQ(second.WaitForRequest(Short), DWORD{WAIT_TIMEOUT});
    }
    EXPECT_EQ(m_driver.Count().m_nPending, 0u);
}
} // namespace

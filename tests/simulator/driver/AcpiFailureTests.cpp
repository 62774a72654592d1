#include "tests/simulator/driver/AcpiClient.h"
#include "tests/simulator/driver/DeviceFilesTest.h"

#include <winternl.h>

namespace
{
constexpr LONG g_unsuccessful = static_cast<LONG>(0xC0000001);
constexpr LONG g_deviceNotReady = static_cast<LONG>(0xC00000A3);
constexpr LONG g_powerFailure = static_cast<LONG>(0xC000002F);
constexpr LONG g_deviceRemoved = static_cast<LONG>(0xC00002B6);

using AcpiFailure = DeviceFilesTest;

class AcpiFailureStatus : public DeviceFilesTest, public testing::WithParamInterface<LONG>
{
};

TEST_P(AcpiFailureStatus, PendingRequest_EndsWithIt)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.FailRequest(GetParam()), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Status(), GetParam());
    EXPECT_EQ(client.Error(), RtlNtStatusToDosError(GetParam()));
    EXPECT_EQ(client.Data(), AcpiClient::Untouched);
    EXPECT_EQ(m_driver.Count().m_nFailed, 1u);
    EXPECT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
}

TEST_P(AcpiFailureStatus, RefusedRequest_FailsAtOnce)
{
    AcpiClient client;
    EXPECT_EQ(m_driver.RefuseRequests(GetParam()), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(client.Send(), RtlNtStatusToDosError(GetParam()));
    EXPECT_EQ(client.Send(), RtlNtStatusToDosError(GetParam()));
    EXPECT_EQ(m_driver.Count().m_nRefused, 2u);
    EXPECT_EQ(m_driver.RefuseRequests(0), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
}

INSTANTIATE_TEST_SUITE_P(Statuses, AcpiFailureStatus,
                         testing::Values(g_unsuccessful, g_deviceNotReady, g_powerFailure, g_deviceRemoved));

TEST_F(AcpiFailure, NothingPending_IsNotFound)
{
    EXPECT_EQ(m_driver.FailRequest(g_unsuccessful), DWORD{ERROR_NOT_FOUND});
    EXPECT_EQ(m_driver.Count().m_nFailed, 0u);
}

TEST_F(AcpiFailure, RefusalWhileOneIsPending_LeavesThatOne)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.RefuseRequests(g_deviceNotReady), DWORD{ERROR_SUCCESS});
    EXPECT_FALSE(client.HasEnded(Short));
    EXPECT_EQ(m_driver.CompleteRequest(1), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Data(), 1);
    EXPECT_EQ(client.Send(), DWORD{ERROR_NOT_READY});
}

TEST_F(AcpiFailure, DeviceRemoved_EndsWhatIsPendingAndIsGone)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.SetAcpiPresent(false), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Status(), g_deviceRemoved);
    EXPECT_EQ(client.Send(), RtlNtStatusToDosError(g_deviceRemoved));
    EXPECT_THAT(PresentPaths(AcpiInterface), testing::IsEmpty());
    EXPECT_FALSE(AcpiClient().IsOpen());
}

TEST_F(AcpiFailure, DeviceComesBack_CanBeOpenedAgain)
{
    EXPECT_EQ(m_driver.SetAcpiPresent(false), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.SetAcpiPresent(true), DWORD{ERROR_SUCCESS});
    EXPECT_THAT(PresentPaths(AcpiInterface), testing::SizeIs(1));
    AcpiClient client;
    ASSERT_TRUE(client.IsOpen());
    EXPECT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
}
} // namespace

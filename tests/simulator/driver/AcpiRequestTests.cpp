#include "tests/simulator/driver/AcpiClient.h"
#include "tests/simulator/driver/DeviceFilesTest.h"

namespace
{
using AcpiRequest = DeviceFilesTest;

TEST_F(AcpiRequest, NoEvent_StaysPending)
{
    AcpiClient client;
    ASSERT_TRUE(client.IsOpen());
    EXPECT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_FALSE(client.HasEnded(Short));
    const auto counters = m_driver.Count();
    EXPECT_EQ(counters.m_nOpens, 1u);
    EXPECT_EQ(counters.m_nWaits, 1u);
    EXPECT_EQ(counters.m_nPending, 1u);
    EXPECT_EQ(counters.m_nCompleted, 0u);
}

class AcpiRequestByte : public DeviceFilesTest, public testing::WithParamInterface<int>
{
};

TEST_P(AcpiRequestByte, EventWhilePending_EndsWithItsByte)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    const auto data = static_cast<BYTE>(GetParam());
    EXPECT_EQ(m_driver.CompleteRequest(data), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Error(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(client.Size(), 1u);
    EXPECT_EQ(client.Data(), data);
    EXPECT_EQ(m_driver.Count().m_nCompleted, 1u);
    EXPECT_EQ(m_driver.Count().m_nPending, 0u);
}

INSTANTIATE_TEST_SUITE_P(Bytes, AcpiRequestByte, testing::Values(0xA0, 0x00, 0x01, 0x9F, 0xA1, 0xFF));

TEST_F(AcpiRequest, EventsBeforeIt_AreAnsweredInOrder)
{
    for (const BYTE data : {BYTE{0xA0}, BYTE{0x01}, BYTE{0xA0}})
        EXPECT_EQ(m_driver.CompleteRequest(data), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.Count().m_nQueued, 3u);
    AcpiClient client;
    for (const BYTE data : {BYTE{0xA0}, BYTE{0x01}, BYTE{0xA0}})
    {
        EXPECT_EQ(client.Send(), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(client.Data(), data);
        EXPECT_EQ(client.Size(), 1u);
    }
    EXPECT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.Count().m_nCompleted, 3u);
}

TEST_F(AcpiRequest, QueueIsFull_NextEventIsRefused)
{
    for (ULONG i = 0; i < Simulator::Devices::MostQueuedEvents; ++i)
        ASSERT_EQ(m_driver.CompleteRequest(static_cast<BYTE>(i)), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.CompleteRequest(0), DWORD{ERROR_BUSY});
    AcpiClient client;
    for (ULONG i = 0; i < Simulator::Devices::MostQueuedEvents; ++i)
    {
        ASSERT_EQ(client.Send(), DWORD{ERROR_SUCCESS});
        ASSERT_EQ(client.Data(), static_cast<BYTE>(i));
    }
    EXPECT_EQ(m_driver.Count().m_nQueued, 0u);
}

TEST_F(AcpiRequest, EventWithoutData_EndsWithNone)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.CompleteRequestWithoutData(), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Error(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(client.Size(), 0u);
    EXPECT_EQ(client.Data(), AcpiClient::Untouched);
}

TEST_F(AcpiRequest, WithoutRoom_EndsWithoutData)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(AcpiClient::WaitForEventCode, 0), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.CompleteRequest(0xA0), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Error(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(client.Size(), 0u);
}

TEST_F(AcpiRequest, TwoClientsWait_EachEventGoesToOneOldestFirst)
{
    AcpiClient first;
    AcpiClient second;
    ASSERT_EQ(first.Send(), DWORD{ERROR_IO_PENDING});
    ASSERT_EQ(second.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.Count().m_nPending, 2u);
    EXPECT_EQ(m_driver.CompleteRequest(1), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(first.HasEnded(Limit));
    EXPECT_EQ(first.Data(), 1);
    EXPECT_FALSE(second.HasEnded(Short));
    EXPECT_EQ(m_driver.CompleteRequest(2), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(second.HasEnded(Limit));
    EXPECT_EQ(second.Data(), 2);
}

TEST_F(AcpiRequest, ClosedWhilePending_IsGivenBack)
{
    AcpiClient other;
    ASSERT_EQ(other.Send(), DWORD{ERROR_IO_PENDING});
    {
        AcpiClient client;
        ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
        client.Close();
        ASSERT_TRUE(client.HasEnded(Limit));
        EXPECT_EQ(client.Data(), AcpiClient::Untouched);
    }
    EXPECT_EQ(m_driver.Count().m_nCancelled, 1u);
    EXPECT_EQ(m_driver.Count().m_nPending, 1u);
    EXPECT_FALSE(other.HasEnded(Short));
}

TEST_F(AcpiRequest, CancelledByItsClient_EndsAndIsCounted)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    client.Cancel();
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Error(), DWORD{ERROR_OPERATION_ABORTED});
    EXPECT_EQ(m_driver.Count().m_nCancelled, 1u);
    EXPECT_EQ(m_driver.Count().m_nPending, 0u);
    EXPECT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
}

TEST_F(AcpiRequest, OtherCode_IsNoFunctionOfTheDevice)
{
    AcpiClient client;
    EXPECT_EQ(client.Send(AcpiClient::WaitForEventCode + 4), DWORD{ERROR_INVALID_FUNCTION});
    EXPECT_EQ(m_driver.Count().m_nWaits, 0u);
}

TEST_F(AcpiRequest, DriverIsAskedToWaitForOne_EndsWhenItComes)
{
    EXPECT_EQ(m_driver.WaitForRequest(Short), DWORD{WAIT_TIMEOUT});
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.WaitForRequest(Limit), DWORD{ERROR_SUCCESS});
}

TEST_F(AcpiRequest, DriverIsResetWhilePending_EndsCancelledAndNothingIsLeft)
{
    AcpiClient client;
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.CompleteRequest(7), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(m_driver.CompleteRequest(8), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(m_driver.Reset(), DWORD{ERROR_SUCCESS});
    const auto counters = m_driver.Count();
    EXPECT_EQ(counters.m_nQueued + counters.m_nWaits + counters.m_nCompleted + counters.m_nOpens, 0u);
    ASSERT_EQ(client.Send(), DWORD{ERROR_IO_PENDING});
    EXPECT_EQ(m_driver.Reset(), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(client.HasEnded(Limit));
    EXPECT_EQ(client.Error(), DWORD{ERROR_OPERATION_ABORTED});
}
} // namespace

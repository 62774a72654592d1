#include "tests/support/AllocationFault.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/HubProbe.h"
#include "tests/wmievents/SmallMachine.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::IsEmpty;
using Tests::SmallMachine;
using Tests::SweepAllocations;

// Want of memory inside the handler of the USB-C event.
namespace
{
class UsbCOutOfMemoryTest : public testing::Test
{
protected:
    // What runs for the first time keeps some memory.
    UsbCOutOfMemoryTest() { EXPECT_TRUE(IsShown()); }

    void Process()
    {
        VARIANT data{};
        data.vt = VT_UI1;
        data.bVal = 2;
        m_hr = m_hub.ProcessUSBCWMIEvent(131073, &data);
    }

    bool IsShown()
    {
        static_cast<void>(SmallMachine::TakeToasts());
        Process();
        return m_hr == S_OK && SmallMachine::TakeToasts() == 1;
    }

    void ExpectAllowedResult() const { EXPECT_TRUE(m_hr == S_OK || m_hr == E_OUTOFMEMORY) << m_hr; }

    // Blocks that are in use once the log is empty.
    static std::size_t LiveBlocks()
    {
        TestSupport::ClearLog();
        return LiveHeapBlocks();
    }

    SmallMachine m_machine;
    Tests::HubProbe m_hub;
    HRESULT m_hr = E_UNEXPECTED;
};
} // namespace

TEST_F(UsbCOutOfMemoryTest, EachAllocationFails_LetsNothingOutLeaksNothingAndTheNextEventIsShown)
{
    const TestSupport::BstrLedger ledger{L"msxml3.dll"};
    const std::size_t before = LiveBlocks();
    unsigned lost = 0;
    {
        const auto records = SweepAllocations([this] { Process(); },
                                              [&]
                                              {
                                                  ExpectAllowedResult();
                                                  lost += SmallMachine::TakeToasts() == 0;
                                              });
        EXPECT_THAT(records, Contains(L"Exception occurred, [hr:0x8007000E]"));
    }
    EXPECT_GE(lost, 3u);
    EXPECT_EQ(LiveBlocks(), before);
    EXPECT_GT(ledger.Allocations(), 0u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_TRUE(IsShown());
}

TEST_F(UsbCOutOfMemoryTest, EachTextFails_LetsNothingOutLeaksNothingAndTheNextEventIsShown)
{
    const std::size_t before = LiveBlocks();
    unsigned lost = 0;
    bool isBitten = true;
    for (unsigned nth = 1; nth < 100 && isBitten; ++nth)
    {
        static_cast<void>(SmallMachine::TakeToasts());
        {
            const Tests::FailingBstr fault(nth);
            EXPECT_NO_THROW(Process()) << "text " << nth;
            isBitten = Tests::FailingBstr::HasBitten();
        }
        ExpectAllowedResult();
        EXPECT_EQ(LiveBlocks(), before) << "text " << nth;
        lost += SmallMachine::TakeToasts() == 0;
    }
    EXPECT_FALSE(isBitten);
    EXPECT_GE(lost, 5u);
    EXPECT_TRUE(IsShown());
}

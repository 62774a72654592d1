#include "tests/auditlog/AuditLogTest.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/BstrLedger.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/SmallMachine.h"
#include "wmievents/VeritorThreads.h"
#include "wmievents/WmiEventsState.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

using namespace Notifications::OrvikWmiEvents;
using testing::IsEmpty;
using testing::IsSupersetOf;
using Tests::AuditLogEntry;
using Tests::RecordText;
using Tests::SmallMachine;
using TestSupport::EventLogCapture;

// Want of memory inside a whole copy of the audit log.
namespace
{
class AuditLogOutOfMemoryTest : public testing::Test
{
protected:
    // What runs for the first time keeps some memory.
    AuditLogOutOfMemoryTest()
    {
        FillFirmware();
        EXPECT_EQ(Copy(), S_OK);
    }
    ~AuditLogOutOfMemoryTest() override { SmallMachine::SetAuditLog(L"<AuditLog/>"); }

    static HRESULT Copy() { return static_cast<HRESULT>(ThreadProcVeritorLogging(nullptr)); }

    // Two entries that were never there before.
    void FillFirmware()
    {
        static int count = 0;
        m_lstEntries.clear();
        for (int i = 0; i < 2; ++i)
            m_lstEntries.push_back({L"OUT OF MEMORY, ENTRY " + std::to_wstring(++count), L"the firmware of the machine",
                                    L"4", L"an intrusion that was detected", L"ERROR"});
        m_strXml = Tests::LogXml(m_lstEntries);
        SmallMachine::SetAuditLog(m_strXml.c_str());
    }

    [[nodiscard]] std::size_t WritesOf(const AuditLogEntry& entry) const
    {
        const auto events = EventLogCapture::Events();
        return static_cast<std::size_t>(
            std::ranges::count_if(events, [text = RecordText(entry)](const TestSupport::ReportedEvent& event)
                                  { return event.m_lstStrings.at(0) == text; }));
    }

    void NoteRecords()
    {
        for (const std::wstring& line : TestSupport::OperationalLines())
            m_setRecords.insert(line.substr(line.rfind(L'|') + 1));
    }

    // Nothing may be held or open.
    static void ExpectNothingHeld(std::size_t nth)
    {
        EXPECT_EQ(g_csLogging.OwningThread, nullptr) << nth;
        EXPECT_EQ(g_csCopy.OwningThread, nullptr) << nth;
        EXPECT_EQ(std::ranges::count(EventLogCapture::OpenSources(), std::wstring(VeritorEventSourceName)), 0) << nth;
    }

    // After a copy that failed in some way comes a whole one.
    void ExpectNextCopyIsWhole(std::size_t nth)
    {
        EXPECT_EQ(Copy(), S_OK) << nth;
        for (const AuditLogEntry& entry : m_lstEntries)
        {
            const std::size_t writes = WritesOf(entry);
            // A record whose key found no memory is written again; one whose text found none counts as written.
            EXPECT_LE(writes, 2u) << nth;
            m_nLost += writes == 0 ? 1 : 0;
            m_nTwice += writes == 2 ? 1 : 0;
        }
    }

    SmallMachine m_machine;
    Tests::HubProbe m_hub;
    Tests::EventSourceCalls m_sources;
    const TestSupport::BstrLedger m_ledger{L"msxml3.dll"};
    std::vector<AuditLogEntry> m_lstEntries;
    std::wstring m_strXml;
    std::set<std::wstring> m_setRecords;
    std::size_t m_nLost = 0;
    std::size_t m_nTwice = 0;
};
} // namespace

TEST_F(AuditLogOutOfMemoryTest, EachAllocationFails_LetsNothingOutLeaksNothingAndTheNextCopyIsWhole)
{
    std::size_t nth = 1;
    for (bool isBitten = true; isBitten; ++nth)
    {
        FillFirmware();
        TestSupport::ClearLog();
        HRESULT hr = S_OK;
        {
            const AllocationFault fault(nth);
            EXPECT_NO_THROW(hr = Copy()) << nth;
            isBitten = AllocationFault::HasBitten();
        }
        EXPECT_TRUE(hr == S_OK || hr == E_OUTOFMEMORY) << nth;
        NoteRecords();
        ExpectNothingHeld(nth);
        ExpectNextCopyIsWhole(nth);
    }
    EXPECT_GT(nth, 50u);
    EXPECT_THAT(m_ledger.LiveTexts(), IsEmpty());
    EXPECT_THAT(m_setRecords,
                IsSupersetOf({L"Exception occurred during call for EmbeddedController.AuditLog. hr = 0x8007000E",
                              L"GetVeritorLogFromPlix failed.  HR=0X8007000e",
                              L"Exception occurred extracting Veritor logs. hr = 0x8007000E",
                              L"Exception occurred writing Event Viewer. hr = 0x8007000E"}));
    EXPECT_GT(m_nTwice, 0u);
}

TEST_F(AuditLogOutOfMemoryTest, EachTextFails_LetsNothingOutLeaksNothingAndTheNextCopyIsWhole)
{
    unsigned nth = 1;
    for (bool isBitten = true; isBitten; ++nth)
    {
        FillFirmware();
        TestSupport::ClearLog();
        {
            const Tests::FailingBstr fault(nth);
            EXPECT_NO_THROW(static_cast<void>(Copy())) << nth;
            isBitten = Tests::FailingBstr::HasBitten();
        }
        NoteRecords();
        ExpectNothingHeld(nth);
        ExpectNextCopyIsWhole(nth);
    }
    // The command's name, its answer, the text for the parser, one text for each record.
    EXPECT_EQ(nth, 7u);
    EXPECT_EQ(m_nLost, 2u);
    EXPECT_EQ(m_nTwice, 0u);
    EXPECT_THAT(m_ledger.LiveTexts(), IsEmpty());
    EXPECT_THAT(m_setRecords,
                IsSupersetOf({L"Exception occurred during call for EmbeddedController.AuditLog. hr = 0x8007000E",
                              L"There is no memory for the audit log.",
                              L"Exception occurred writing Event Viewer. hr = 0x8007000E"}));
}

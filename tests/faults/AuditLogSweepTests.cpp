#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/XmlCalls.h"
#include "tests/faults/FaultSweep.h"
#include "wmievents/VeritorThreads.h"
#include "wmievents/WmiEventsState.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace Notifications::OrvikWmiEvents;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;
using Tests::AuditLogEntry;
using Tests::RecordText;

namespace
{
// A whole copy of an audit log, in which each call of the platform, of the parser and of the event log fails in turn.
class AuditLogSweep : public Tests::AuditLogTest
{
protected:
    // Two entries that were never there before.
    void FillFirmware()
    {
        m_nEntries += 2;
        m_lstEntries = {Entry(m_nEntries), Entry(m_nEntries + 1)};
        FirmwareHas(Tests::LogXml(m_lstEntries));
    }

    void Copy() { m_hr = static_cast<HRESULT>(ThreadProcVeritorLogging(nullptr)); }

    [[nodiscard]] bool IsWritten(const AuditLogEntry& entry) const
    {
        return std::ranges::count(WrittenTexts(), RecordText(entry)) == 1;
    }

    static void ExpectNothingHeld()
    {
        EXPECT_EQ(g_csLogging.OwningThread, nullptr);
        EXPECT_EQ(g_csCopy.OwningThread, nullptr);
        EXPECT_EQ(OpenSources(), 0u);
    }

    // Calls behind which an entry counts as written though it is not.
    static bool LosesARecord(const std::string& call)
    {
        return call == "RegisterEventSourceW" || call == "ReportEventW" || call.starts_with("SysAlloc");
    }

    void CheckFailure(const FaultStep& step)
    {
        ExpectNothingHeld();
        EXPECT_LE(Written().size(), 2u);
        if (m_hr != S_OK)
        {
            EXPECT_THAT(m_hr, testing::AnyOf(step.m_hr, E_OUTOFMEMORY, CO_E_NOTINITIALIZED));
            EXPECT_THAT(TestSupport::LogLines(Tests::g_pCopyThread),
                        Contains(testing::AnyOf(HasSubstr(L"|GetVeritorLogFromPlix failed.  HR=0X"),
                                                HasSubstr(L"|There is no memory for the audit log."))));
            EXPECT_EQ(Written().size(), 0u);
        }
        Copy();
        EXPECT_EQ(m_hr, S_OK);
        const auto isThere = [this](const AuditLogEntry& entry) { return IsWritten(entry); };
        if (!LosesARecord(step.m_strCall))
        {
            EXPECT_TRUE(std::ranges::all_of(m_lstEntries, isThere)) << step.m_strCall;
        }
        else if (step.m_repeat == Simulator::Repeat::Once)
        {
            EXPECT_TRUE(std::ranges::any_of(m_lstEntries, isThere)) << step.m_strCall;
        }
    }

    int m_nEntries = 0;
    std::vector<AuditLogEntry> m_lstEntries;
    HRESULT m_hr = E_UNEXPECTED;
    FaultSweep m_sweep;
    const Tests::XmlCalls m_xml;
};
} // namespace

TEST_F(AuditLogSweep, Copy_EachCallFails_LosesNoMoreThanItsRecordAndTheNextCopyIsWhole)
{
    m_sweep.m_operation = [this]
    {
        FillFirmware();
        EXPECT_NO_THROW(Copy());
    };
    m_sweep.m_checkFailure = [this](const FaultStep& step) { CheckFailure(step); };
    m_sweep.m_checkSuccess = [this]
    {
        EXPECT_EQ(m_hr, S_OK);
        EXPECT_THAT(WrittenTexts(), UnorderedElementsAre(RecordText(m_lstEntries[0]), RecordText(m_lstEntries[1])));
        EXPECT_EQ(Tests::XmlCalls::LiveReferences(), 0);
    };
    EXPECT_THAT(m_sweep.Run(),
                IsSupersetOf({"CoInitializeEx", "CoCreateInstance", "OleRun", "SysAllocString", "IPlixCommand::Execute",
                              "get_documentElement", "get_childNodes", "get_length", "get_item", "get_nodeName",
                              "get_text", "RegisterEventSourceW", "ReportEventW"}));
}

#include "wmievents/AuditLogScan.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/QuietLog.h"
#include "tests/support/AllocationFault.h"
#include "wmievents/AuditLogKeyMap.h"

#include <gmock/gmock.h>

#include <cstddef>

using Notifications::OrvikWmiEvents::LogEntryAlreadyInserted;
using Notifications::OrvikWmiEvents::ThreadProcCreateHashKeysForVeritorEventLogs;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using TestSupport::LogLines;
using TestSupport::StoredRecord;
namespace Level = Orvik::Shared::Level;

namespace
{
using MallocFunction = void*(std::size_t);
using ReallocFunction = void*(void*, std::size_t);

constexpr std::size_t g_firstSize = 65536;

// Requests for a buffer that still fail; the sizes of all of them.
unsigned g_nRefusals = 0;
std::vector<std::size_t> g_lstRequests;

// The C runtime's own functions, known before the first call of the planned ones.
template <class Function>
Function* RuntimeFunction(const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), name)));
}
MallocFunction* const g_pfnMalloc = RuntimeFunction<MallocFunction>("malloc");
ReallocFunction* const g_pfnRealloc = RuntimeFunction<ReallocFunction>("realloc");

bool IsRefused(std::size_t size)
{
    const AllocationFault::Pause pause;
    g_lstRequests.push_back(size);
    if (g_nRefusals == 0)
        return false;
    --g_nRefusals;
    return true;
}

// The compiler makes this call of a reallocation of nothing.
void* PlannedMalloc(std::size_t size)
{
    return size == g_firstSize && IsRefused(size) ? nullptr : g_pfnMalloc(size);
}

void* PlannedRealloc(void* memory, std::size_t size)
{
    return size >= g_firstSize && IsRefused(size) ? nullptr : g_pfnRealloc(memory, size);
}

class AuditLogScanFailureTest : public Tests::AuditLogTest
{
protected:
    AuditLogScanFailureTest() : m_malloc("malloc", &PlannedMalloc), m_realloc("realloc", &PlannedRealloc)
    {
        g_nRefusals = 0;
        g_lstRequests.clear();
    }
    // Whatever failed, the log is closed and the scan lock is free.
    ~AuditLogScanFailureTest() override
    {
        EXPECT_EQ(m_eventLog.OpenCount(), 0u);
        m_hub.CreateHashKeysForVeritorEventLogs();
    }

    static void Scan() { EXPECT_EQ(ThreadProcCreateHashKeysForVeritorEventLogs(nullptr), 0u); }

    StoredRecord Record(int n, std::size_t length = 0) const
    {
        return {L"Orvik Veritor", 4, {std::wstring(length, L'x') + L" Timestamp: " + Stamp(n)}};
    }

    // The buffer itself is there by then.
    void RefuseOnceTheLogIsRead(unsigned times)
    {
        m_eventLog.m_onRead = [times, isFirst = true]() mutable
        {
            if (isFirst)
                g_nRefusals = times;
            isFirst = false;
        };
    }

    bool IsKnown(int n) const { return LogEntryAlreadyInserted(L"4", L"", L"", Stamp(n)); }

    Simulator::Redirection<MallocFunction> m_malloc;
    Simulator::Redirection<ReallocFunction> m_realloc;
};
} // namespace

TEST_F(AuditLogScanFailureTest, LogThatDoesNotOpen_IsLoggedWithTheCode)
{
    const std::pair<DWORD, const wchar_t*> codes[] = {
        {ERROR_ACCESS_DENIED, L"0x5"}, {RPC_S_SERVER_UNAVAILABLE, L"0x6ba"}, {ERROR_EVENTLOG_FILE_CORRUPT, L"0x5dc"}};
    for (const auto& [code, text] : codes)
    {
        StartWatching();
        m_eventLog.RefuseOpening(code);
        Scan();
        EXPECT_THAT(LogLines(Tests::g_pScanner),
                    ElementsAre(L"TraceIn|", L"Information|OpenEventLog failed with " + std::wstring(text) + L".\n",
                                L"TraceOut|0"));
    }
    EXPECT_EQ(m_eventLog.Reads().size(), 0u);
    m_eventLog.RefuseOpening(ERROR_SUCCESS);
}

TEST_F(AuditLogScanFailureTest, NoMemoryForTheBuffer_IsLoggedAndNothingIsRead)
{
    g_nRefusals = 1;
    m_eventLog.Add(Record(0));
    Scan();
    EXPECT_THAT(g_lstRequests, ElementsAre(65536u));
    EXPECT_THAT(LogLines(Tests::g_pScanner),
                ElementsAre(L"TraceIn|", L"Information|Failed to allocate the initial memory for the record buffer.",
                            L"TraceOut|0"));
    EXPECT_EQ(m_eventLog.Reads().size(), 0u);
    Scan();
    EXPECT_TRUE(IsKnown(0));
}

TEST_F(AuditLogScanFailureTest, OtherFailureOfARead_IsLoggedAndEndsTheScanWithTheKeysSoFar)
{
    const std::pair<DWORD, const wchar_t*> codes[] = {{ERROR_EVENTLOG_FILE_CHANGED, L"1503"},
                                                      {ERROR_EVENTLOG_FILE_CORRUPT, L"1500"},
                                                      {ERROR_INVALID_PARAMETER, L"87"},
                                                      {RPC_S_SERVER_UNAVAILABLE, L"1722"},
                                                      {0xFFFFFFFF, L"4294967295"}};
    int n = 0;
    for (const auto& [code, text] : codes)
    {
        StartWatching();
        const auto bytes = TestSupport::BytesOf(Record(++n));
        m_eventLog.AnswerNext({.m_lstBytes = bytes, .m_dwBytesRead = static_cast<DWORD>(bytes.size())});
        m_eventLog.AnswerNext({.m_dwError = code});
        const std::size_t reads = m_eventLog.Reads().size();
        Scan();
        EXPECT_EQ(m_eventLog.Reads().size(), reads + 2);
        const auto lines = LogLines(Tests::g_pScanner);
        ASSERT_GT(lines.size(), 3u);
        EXPECT_EQ(lines[1], L"Information|ReadEventLog failed with " + std::wstring(text) + L".\n");
        // The keys are told of all the same.
        EXPECT_THAT(lines, Contains(HasSubstr(L"Verbose|Key: [" + Stamp(n) + L"|4]   Value:[")));
        EXPECT_TRUE(IsKnown(n));
    }
}

TEST_F(AuditLogScanFailureTest, EndOfTheLog_IsNoFailure)
{
    m_eventLog.Add(Record(0));
    Scan();
    EXPECT_THAT(LogLines(Tests::g_pScanner), Not(Contains(HasSubstr(L"failed"))));
    EXPECT_THAT(LogLines(Tests::g_pScanner), Not(Contains(HasSubstr(L"Failed"))));
}

TEST_F(AuditLogScanFailureTest, Growth_AsksForWhatTheSystemSaysAndNoMore)
{
    m_eventLog.AnswerNext({.m_dwError = ERROR_INSUFFICIENT_BUFFER, .m_dwBytesNeeded = 70001});
    m_eventLog.AnswerNext({.m_dwError = ERROR_INSUFFICIENT_BUFFER, .m_dwBytesNeeded = 90000});
    m_eventLog.Add(Record(0));
    Scan();
    EXPECT_THAT(g_lstRequests, ElementsAre(65536u, 70001u, 90000u));
    const auto reads = m_eventLog.Reads();
    ASSERT_EQ(reads.size(), 4u);
    EXPECT_EQ(reads[1].m_dwSize, 70001u);
    EXPECT_EQ(reads[2].m_dwSize, 90000u);
    EXPECT_TRUE(IsKnown(0));
}

TEST_F(AuditLogScanFailureTest, GrowthThatFails_IsLoggedAndTriedAgainUntilThereIsMemory)
{
    m_eventLog.Add(Record(0, 40000));
    RefuseOnceTheLogIsRead(20);
    Scan();
    EXPECT_EQ(TestSupport::LogCount(Level::Information, Tests::g_pScanner,
                                    L"Failed to reallocate the memory for the record buffer."),
              20u);
    const auto reads = m_eventLog.Reads();
    ASSERT_EQ(reads.size(), 23u);
    for (std::size_t i = 0; i <= 20; ++i)
    {
        EXPECT_EQ(reads[i].m_dwSize, 65536u);
        EXPECT_EQ(reads[i].m_pBuffer, reads[0].m_pBuffer);
    }
    EXPECT_TRUE(IsKnown(0));
}

TEST_F(AuditLogScanFailureTest, GrowthThatNeverWorks_EndsWhenTheLogCanBeReadAgain)
{
    for (int i = 0; i < 50; ++i)
        m_eventLog.AnswerNext({.m_dwError = ERROR_INSUFFICIENT_BUFFER, .m_dwBytesNeeded = 0x7FFFFFFF});
    m_eventLog.Add(Record(0));
    RefuseOnceTheLogIsRead(0xFFFFFFFF);
    Scan();
    EXPECT_EQ(TestSupport::LogCount(Level::Information, Tests::g_pScanner,
                                    L"Failed to reallocate the memory for the record buffer."),
              50u);
    EXPECT_EQ(m_eventLog.Reads().size(), 52u);
    EXPECT_TRUE(IsKnown(0));
    g_nRefusals = 0;
}

TEST_F(AuditLogScanFailureTest, TooSmallABufferThatIsLargeEnough_IsAFailureLikeAnyOther)
{
    for (const DWORD needed : {0u, 1u, 65536u})
    {
        StartWatching();
        m_eventLog.AnswerNext({.m_dwError = ERROR_INSUFFICIENT_BUFFER, .m_dwBytesNeeded = needed});
        Scan();
        EXPECT_TRUE(TestSupport::Logged(Level::Information, Tests::g_pScanner, L"ReadEventLog failed with 122.\n"));
    }
    EXPECT_THAT(g_lstRequests, ElementsAre(65536u, 65536u, 65536u));
}

TEST_F(AuditLogScanFailureTest, NoMemoryForAKey_IsLoggedAndEndsTheScanWithTheKeysSoFar)
{
    m_eventLog.Add(Record(0, 2000));
    m_eventLog.Add(Record(1));
    {
        // The text of the older record.
        const AllocationFault fault(1, 4000);
        Scan();
        EXPECT_TRUE(AllocationFault::HasBitten());
    }
    EXPECT_TRUE(IsKnown(1));
    EXPECT_FALSE(IsKnown(0));
    EXPECT_THAT(LogLines(Tests::g_pScanner),
                ElementsAre(L"TraceIn|", L"Error|There is no memory for the records of the event log.", L"TraceOut|0"));
}

TEST_F(AuditLogScanFailureTest, EachAllocationFails_LetsNothingOutAndTheNextScanIsWhole)
{
    m_eventLog.Add(Record(0, 300));
    Scan();
    const Tests::QuietLog quiet(Level::Information);
    std::size_t failures = 0;
    for (std::size_t nth = 1;; ++nth)
    {
        bool isBitten = false;
        {
            const AllocationFault fault(nth);
            EXPECT_NO_THROW(Scan());
            isBitten = AllocationFault::HasBitten();
        }
        EXPECT_EQ(m_eventLog.OpenCount(), 0u) << nth;
        if (!isBitten)
            break;
        failures += TestSupport::LogCount(Level::Error, Tests::g_pScanner,
                                          L"There is no memory for the records of the event log.");
        TestSupport::ClearLog();
    }
    EXPECT_GT(failures, 5u);
    m_eventLog.Add(Record(1));
    Scan();
    EXPECT_TRUE(IsKnown(0) && IsKnown(1));
}

#pragma once

#include "shared/LogLevel.h"
#include "tests/auditlog/EventSourceCalls.h"
#include "tests/auditlog/ThreadWatch.h"
#include "tests/support/EventLogCapture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ReadableEventLog.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/AuditLogEntry.h"
#include "wmievents/VeritorEventLog.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tests
{
using Notifications::OrvikWmiEvents::AuditLogEntry;
namespace Level = Orvik::Shared::Level;

// Under which names the parts of the copy write their records.
inline constexpr const char* g_pWalker = "Notifications::OrvikWmiEvents::AddLogsToEventViewer";
inline constexpr const char* g_pFetcher = "Notifications::OrvikWmiEvents::GetVeritorLogFromPlix";
inline constexpr const char* g_pWriter = "Notifications::OrvikWmiEvents::LogVeritor";
inline constexpr const char* g_pKeyMaker = "Notifications::OrvikWmiEvents::CreateHashingTimeStamp";
inline constexpr const char* g_pLookUp = "Notifications::OrvikWmiEvents::LogEntryAlreadyInserted";
inline constexpr const char* g_pScanner = "Notifications::OrvikWmiEvents::ThreadProcCreateHashKeysForVeritorEventLogs";
inline constexpr const char* g_pCopyThread = "Notifications::OrvikWmiEvents::ThreadProcVeritorLogging";
inline constexpr const char* g_pEventThread = "Notifications::OrvikWmiEvents::ThreadProcVeritorEvent";

// "<name>text</name>" with what XML reserves written as it must be.
[[nodiscard]] std::wstring Element(std::wstring_view name, std::wstring_view text);
// One entry with all five fields, the whole log of some, oldest first.
[[nodiscard]] std::wstring EntryXml(const AuditLogEntry& entry);
[[nodiscard]] std::wstring LogXml(std::span<const AuditLogEntry> entries);
[[nodiscard]] std::wstring LogXml(std::initializer_list<AuditLogEntry> entries);

// The text of the record of an entry.
[[nodiscard]] std::wstring RecordText(const AuditLogEntry& entry);

// The firmware's audit log on its way into the Windows event log, in a machine that has everything. The locks of the
// hub exist, the thread of the test has initialised COM, and no thread of the program outlives the test.
class AuditLogTest : public HubTest
{
protected:
    AuditLogTest();

    // A timestamp that no other test of the process has, without lower-case letters.
    [[nodiscard]] std::wstring Stamp(int n = 0) const;
    // A warning with number 4 and such a timestamp.
    [[nodiscard]] AuditLogEntry Entry(int n = 0) const;
    // Entries 0 to count - 1.
    [[nodiscard]] std::vector<AuditLogEntry> Entries(int count) const;

    // Loads a text and writes its entries, on this thread.
    static void Walk(std::wstring_view xml);
    // What the firmware answers from now on.
    static void FirmwareHas(std::wstring_view xml);

    // Records of the program's source, in the order of writing, without those that were refused.
    [[nodiscard]] static std::vector<TestSupport::ReportedEvent> Written();
    [[nodiscard]] static std::vector<std::wstring> WrittenTexts();
    [[nodiscard]] static std::size_t OpenSources();

    EventSourceCalls m_sources;
    TestSupport::ReadableEventLog m_eventLog;
    ThreadWatch m_threads; // the last member: it ends first

private:
    int m_nTest;
};
} // namespace Tests

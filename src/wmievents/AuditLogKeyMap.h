#pragma once

#include "shared/OwnerTypes.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Notifications::OrvikWmiEvents
{
// The audit-log entries that stand in the Windows event log: key "timestamp|number", value the text of the record that
// was seen first. Grows from the start of the program to its end. Keys and values are in the code page of the thread
// that made them. Any thread; operations raise std::bad_alloc.
class AuditLogKeyMap
{
public:
    using Pairs = std::vector<std::pair<std::string, std::string>>;

    // The process's map. It is left to the system at process end, when copies may still be under way.
    static AuditLogKeyMap& Instance();

    // A key that is present keeps its value.
    void Insert(std::string key, std::string value);
    [[nodiscard]] bool Contains(const std::string& key) const;
    // All pairs as they are now, in no order.
    [[nodiscard]] Pairs Copy() const;

private:
    AuditLogKeyMap() = default;

    // Held for single operations alone, never with another lock inside it.
    mutable Orvik::Shared::CriticalSection m_cs;
    std::unordered_map<std::string, std::string> m_map;
};

// Makes a key from the text of a record and inserts it: what stands behind the first "TIMESTAMP:", in any case, and the
// number. A text without one, or one that begins with it, makes none.
void CreateHashingTimeStamp(int eventId, std::wstring text);

// Whether an entry of the audit log stands in the event log: it does when the key of its timestamp and its event
// identifier, both letter for letter, is in the map. Keys are in upper case and hold plain decimal numbers: a timestamp
// with lower-case letters and a number written in another way are never found, deliberately.
[[nodiscard]] bool LogEntryAlreadyInserted(const std::wstring& eventId, const std::wstring& source,
                                           const std::wstring& description, const std::wstring& timestamp);
} // namespace Notifications::OrvikWmiEvents

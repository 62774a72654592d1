#pragma once

#include "simulator/machine/EventLogRecord.h"

namespace Simulator
{
// The record as ReadEventLogW gives it to programs: EVENTLOGRECORD, the names of source and computer, the strings, the
// data, fill bytes, and the length once more. It has no user. A damaged record has its damage, a raw one its own bytes.
[[nodiscard]] std::vector<BYTE> EventRecordBytes(const EventLogRecord& record, DWORD number);
} // namespace Simulator

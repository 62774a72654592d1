#pragma once

#include "shared/LogFile.h"
#include "shared/LogFileWriteQueue.h"
#include "shared/OrvikLogListener.h"

#include <memory>

namespace Orvik::Shared
{
// Appends records to the log file of this user and program, at once or, queued, on a thread of its own. Where there is
// no file to be had it does nothing.
class COrvikLogListenerFile final : public COrvikLogListener
{
public:
    // queued is overridden by the policy value "QueuedWrites", a number, where the file can be opened. A file that is
    // no log is moved aside. Raises std::bad_alloc.
    COrvikLogListenerFile(bool queued, int defaultMinLevel, const LoggingPolicy& policy);
    COrvikLogListenerFile(const COrvikLogListenerFile&) = delete;
    COrvikLogListenerFile& operator=(const COrvikLogListenerFile&) = delete;
    ~COrvikLogListenerFile() override { Finish(); }

    void Write(const LogData& data) override;
    [[nodiscard]] unsigned GetType() const override;

    // Before the end of the process: gives records that are queued about a second to come into the file, and loses the
    // others, so that a shutdown does not wait for a slow disk. (The C runtime's own end may wait for a write that
    // hangs.)
    void Finish() noexcept;

private:
    bool m_bQueued;
    // Their owner too is a thread that writes when this object ends.
    std::shared_ptr<CLogFile> m_pFile;
    std::shared_ptr<CLogFileWriteQueue> m_pQueue; // null without queued writes
};
} // namespace Orvik::Shared

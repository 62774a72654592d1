#pragma once

#include "tests/logfile/LogFileTest.h"
#include "tests/logfile/WriterThreads.h"

// The same for listeners with queued writes: the threads that they start are known and waited for.
class QueuedLogFileTest : public LogFileTest
{
protected:
    // "message FIRST" to "message LAST".
    static void WriteNumbered(COrvikLogListenerFile& listener, unsigned first, unsigned last)
    {
        for (unsigned i = first; i <= last; ++i)
            listener.Write(MakeRecord(L"message " + std::to_wstring(i)));
    }

    WriterThreads m_threads;
};

#include "tests/logfile/LogFileTest.h"

#include "shared/LogFilePath.h"
#include "shared/OwnerTypes.h"

using namespace Orvik::Shared;

bool LogFileTest::IsMutexFree()
{
    const UniqueHandle mutex(CreateMutexW(nullptr, FALSE, LogMutexName(LogFilePath()).c_str()));
    const bool isFree = WaitForSingleObject(mutex.get(), 0) == WAIT_OBJECT_0;
    if (isFree)
        ReleaseMutex(mutex.get());
    return isFree;
}

#include "shared/OrvikLogListenerFile.h"

#include "shared/LoggingPolicy.h"

namespace Orvik::Shared
{
COrvikLogListenerFile::COrvikLogListenerFile(bool queued, int defaultMinLevel, const LoggingPolicy& policy)
    : COrvikLogListener(defaultMinLevel, policy), m_bQueued(queued), m_pFile(std::make_shared<CLogFile>(policy))
{
    if (!m_pFile->OpenAndLock())
        return;
    const LogFileClosing closing(*m_pFile);
    m_pFile->MoveForeignFileAside();
    if (const auto value = policy.Number(L"QueuedWrites"))
        m_bQueued = *value != 0;
    if (m_bQueued)
        m_pQueue = std::make_shared<CLogFileWriteQueue>(m_pFile);
}

void COrvikLogListenerFile::Write(const LogData& data)
{
    if (!m_pFile->HasPath())
        return;
    if (m_pQueue)
    {
        m_pQueue->Append(data);
        return;
    }
    if (!m_pFile->OpenAndLock())
        return;
    const LogFileClosing closing(*m_pFile);
    m_pFile->WriteRecord(data);
}

unsigned COrvikLogListenerFile::GetType() const
{
    return m_bQueued ? ListenerKind::FileQueued : ListenerKind::File;
}

void COrvikLogListenerFile::Finish() noexcept
{
    if (m_pQueue)
        m_pQueue->Finish();
}
} // namespace Orvik::Shared

#include "shared/Logger.h"

#include "shared/LogData.h"
#include "shared/OrvikLogListenerFile.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <exception>

namespace Orvik::Shared
{
namespace
{
constinit std::atomic<bool> g_processEnds{false};

// Destroyed while other threads of the process still run: from then on nothing is logged.
class ProcessEndGate
{
public:
    ProcessEndGate() = default;
    ProcessEndGate(const ProcessEndGate&) = delete;
    ProcessEndGate& operator=(const ProcessEndGate&) = delete;
    ~ProcessEndGate()
    {
        g_processEnds = true;
        g_enabledLevels = 0;
    }
};

// For a process that has not logged before its end begins.
const ProcessEndGate g_gate;

class FinishAtProcessEnd
{
public:
    explicit FinishAtProcessEnd(CLogger& logger) noexcept : m_logger(logger) {}
    FinishAtProcessEnd(const FinishAtProcessEnd&) = delete;
    FinishAtProcessEnd& operator=(const FinishAtProcessEnd&) = delete;
    ~FinishAtProcessEnd() { m_logger.Finish(); }

private:
    CLogger& m_logger;
};

class LastErrorKeeper
{
public:
    LastErrorKeeper() noexcept : m_dwError(GetLastError()) {}
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;
    ~LastErrorKeeper() { SetLastError(m_dwError); }

private:
    DWORD m_dwError;
};

void WriteTo(COrvikLogListener& listener, const COrvikLogListener::LogData& data) noexcept
{
    try
    {
        listener.Write(data);
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch)
    {
        // Out of memory: this listener loses the record, those behind it do not.
    }
}
} // namespace

CLogger& CLogger::Instance() noexcept
{
    // The first call reads policy and makes listeners; the guard around it calls the system too.
    const LastErrorKeeper keeper;
    static CLogger& logger = CreateInstance();
    return logger;
}

CLogger& CLogger::CreateInstance() noexcept
{
    CLogger* logger = nullptr;
    try
    {
        logger = Create(Level::Error, ListenerKind::Event).release();
    }
    catch (const std::exception&)
    {
        // Out of memory: the process lives on without a log.
        alignas(CLogger) static std::byte storage[sizeof(CLogger)];
        logger = new (storage) CLogger(Listeners{});
    }
    // Earlier than the next gate, so destroyed behind it.
    static const FinishAtProcessEnd finish(*logger);
    // Later than the gate above, so destroyed earlier: objects made before the first record cannot log at their end.
    static const ProcessEndGate gate;
    g_enabledLevels = logger->EnabledLevels();
    if (g_processEnds)
        g_enabledLevels = 0;
    return *logger;
}

CLogger::CLogger(Listeners listeners) noexcept : m_lstListeners(std::move(listeners))
{
    const auto* end = std::ranges::find_if(m_lstListeners, [](const auto& listener) { return !listener; });
    m_nListeners = static_cast<std::size_t>(end - m_lstListeners.begin());
    for (std::size_t i = 0; i < m_nListeners; ++i)
    {
        COrvikLogListener& listener = *m_lstListeners[i];
        m_nMinLevel = std::min(m_nMinLevel, listener.MinLevel());
        m_nMaxLevel = std::max(m_nMaxLevel, listener.MaxLevel());
        if (const unsigned kind = listener.GetType(); kind == ListenerKind::File || kind == ListenerKind::FileQueued)
            m_pFileListener = &listener;
    }
    if (m_pFileListener != nullptr)
        m_bDiagTiming = m_pFileListener->MinLevel() <= Level::Diag && m_pFileListener->MaxLevel() >= Level::Diag;
}

bool CLogger::Takes(int level) const noexcept
{
    return m_nListeners != 0 && level >= m_nMinLevel && level <= m_nMaxLevel;
}

void CLogger::Finish() noexcept
{
    if (auto* const file = dynamic_cast<COrvikLogListenerFile*>(m_pFileListener))
        file->Finish();
}

std::uint32_t CLogger::EnabledLevels() const noexcept
{
    if (m_nListeners == 0)
        return 0;
    std::uint32_t levels = m_nMinLevel < 0 || m_nMaxLevel > 30 ? 1u << 31 : 0;
    for (int level = 0; level <= 30; ++level)
    {
        if (Takes(level))
            levels |= 1u << level;
    }
    return levels;
}

void CLogger::Log(int level, const char* functionName, const wchar_t* format, ...) noexcept
{
    if (!Takes(level) || g_processEnds.load(std::memory_order_relaxed))
        return;
    const LastErrorKeeper keeper;
    std::va_list arguments;
    va_start(arguments, format);
    try
    {
        Write(level, functionName, format, arguments);
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch)
    {
        // Out of memory: the record is lost, the caller is not.
    }
    va_end(arguments);
}

void CLogger::Write(int level, const char* functionName, const wchar_t* format, std::va_list arguments)
{
    wchar_t message[MessageCapacity]{};
    // Does not terminate what it cuts.
    if (format != nullptr)
        _vsnwprintf(message, MessageCapacity - 1, format, arguments);
    const COrvikLogListener::LogData data(level, functionName, message);
    for (std::size_t i = 0; i < m_nListeners; ++i)
    {
        COrvikLogListener& listener = *m_lstListeners[i];
        if (listener.MinLevel() <= level && listener.MaxLevel() >= level)
            WriteTo(listener, data);
    }
}
} // namespace Orvik::Shared

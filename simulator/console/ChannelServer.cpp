#include "simulator/console/ChannelServer.h"

#include "simulator/console/Failure.h"
#include "simulator/machine/Protocol.h"

namespace Simulator
{
namespace
{
constexpr DWORD g_bufferSize = 1 << 20;

unsigned NextNumber()
{
    static unsigned number = 0;
    return ++number;
}

Orvik::Shared::UniqueHandle MakePipe(const std::wstring& name, DWORD direction)
{
    const HANDLE pipe = CreateNamedPipeW(name.c_str(), direction | FILE_FLAG_FIRST_PIPE_INSTANCE,
                                         PIPE_TYPE_BYTE | PIPE_WAIT, 1, g_bufferSize, g_bufferSize, 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE)
        throw UsageError(WindowsFailure("CreateNamedPipeW", GetLastError()));
    return Orvik::Shared::UniqueHandle(pipe);
}
} // namespace

ChannelServer::ChannelServer(EntryLog& entries)
    : m_entries(entries), m_nNumber(NextNumber()),
      m_strName(L"orvik-sim-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(m_nNumber)),
      m_hCommands(MakePipe(Protocol::CommandPipeName(m_strName), PIPE_ACCESS_OUTBOUND)),
      m_hJournal(MakePipe(Protocol::JournalPipeName(m_strName), PIPE_ACCESS_INBOUND))
{
}

ChannelServer::~ChannelServer()
{
    if (m_reader.joinable())
        m_reader.join();
}

void ChannelServer::Listen()
{
    m_reader = std::thread([this] { Read(); });
}

bool ChannelServer::Send(const nlohmann::json& command)
{
    const std::string text = command.dump() + '\n';
    DWORD written = 0;
    return !m_bEnded &&
           WriteFile(m_hCommands.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE;
}

void ChannelServer::Read()
{
    std::string received;
    std::string part(g_bufferSize, '\0');
    DWORD size = 0;
    while (ReadFile(m_hJournal.get(), part.data(), g_bufferSize, &size, nullptr) && size != 0)
    {
        received.append(part, 0, size);
        std::size_t begin = 0;
        for (std::size_t end = received.find('\n'); end != std::string::npos; end = received.find('\n', begin))
        {
            AppendLine(received.substr(begin, end - begin));
            begin = end + 1;
        }
        received.erase(0, begin);
    }
    m_bEnded = true;
    m_entries.Append(m_nNumber, "agent", "ended");
}

void ChannelServer::AppendLine(const std::string& line)
{
    const nlohmann::json entry = nlohmann::json::parse(line, nullptr, false);
    if (entry.is_object())
        m_entries.Append(m_nNumber, entry.value("kind", ""), entry.value("subject", ""),
                         entry.value("details", nlohmann::json()));
}
} // namespace Simulator

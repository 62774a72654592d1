#include "shared/OrvikLogListener.h"

#include "shared/LoggingPolicy.h"

namespace Orvik::Shared
{
namespace
{
// A level name has at most this many characters, a stored terminator included: 256 bytes.
constexpr std::size_t g_levelTextCapacity = 128;
} // namespace

COrvikLogListener::COrvikLogListener(int defaultMinLevel, const LoggingPolicy& policy, LevelPolicy levelPolicy,
                                     const wchar_t* minLevelName)
    : m_nMinLevel(defaultMinLevel), m_levelPolicy(levelPolicy)
{
    if (m_levelPolicy == LevelPolicy::Read)
        ReadRange(policy, minLevelName);
}

void COrvikLogListener::ReadRange(const LoggingPolicy& policy, const wchar_t* minLevelName)
{
    if (const std::wstring name = policy.Text(minLevelName, g_levelTextCapacity); !name.empty())
        m_nMinLevel = LevelFromName(name);
    if (const std::wstring name = policy.Text(L"MaxLogLevel", g_levelTextCapacity); !name.empty())
        m_nMaxLevel = LevelFromName(name);
}
} // namespace Orvik::Shared

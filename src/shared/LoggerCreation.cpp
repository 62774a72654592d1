#include "shared/Logger.h"

#include "shared/LoggingPolicy.h"
#include "shared/OrvikLogListenerConsole.h"
#include "shared/OrvikLogListenerDebug.h"
#include "shared/OrvikLogListenerEvent.h"
#include "shared/OrvikLogListenerFile.h"

#include <algorithm>
#include <cwctype>
#include <string>

namespace Orvik::Shared
{
namespace
{
// Characters of the value that names the listeners, a stored terminator included.
constexpr std::size_t g_loggingTypeCapacity = 64;

struct KindWord
{
    const wchar_t* m_pWord;
    unsigned m_nKind;
};

constexpr KindWord g_kindWords[] = {{L"EVENT", ListenerKind::Event},
                                    {L"FILE", ListenerKind::File},
                                    {L"CONSOLE", ListenerKind::Console},
                                    {L"DEBUG", ListenerKind::Debug}};

unsigned ReadMask(const LoggingPolicy& policy)
{
    std::wstring text = policy.Text(L"LoggingType", g_loggingTypeCapacity);
    std::ranges::transform(text, text.begin(), [](wchar_t c) { return std::towupper(c); });
    unsigned mask = 0;
    for (const KindWord& kind : g_kindWords)
    {
        if (text.find(kind.m_pWord) != std::wstring::npos)
            mask |= kind.m_nKind;
    }
    return mask;
}
} // namespace

CLogger::Listeners CLogger::CreateListeners(int defaultMinLevel, unsigned defaultMask)
{
    if ((defaultMask & ListenerKind::FileQueued) != 0)
        defaultMask &= ~ListenerKind::File;
    const LoggingPolicy policy;
    unsigned mask = ReadMask(policy);
    if (mask == 0)
        mask = defaultMask;

    Listeners listeners;
    auto next = listeners.begin();
    if ((mask & ListenerKind::Event) != 0)
        *next++ = std::make_unique<COrvikLogListenerEvent>(defaultMinLevel, policy);
    if ((mask & ListenerKind::File) != 0)
        *next++ = std::make_unique<COrvikLogListenerFile>(false, defaultMinLevel, policy);
    if ((mask & ListenerKind::FileQueued) != 0)
        *next++ = std::make_unique<COrvikLogListenerFile>(true, defaultMinLevel, policy);
    if ((mask & ListenerKind::Debug) != 0)
        *next++ = std::make_unique<COrvikLogListenerDebug>(defaultMinLevel, policy);
    if ((mask & ListenerKind::Console) != 0)
        *next++ = std::make_unique<COrvikLogListenerConsole>(defaultMinLevel, policy);
    return listeners;
}

std::unique_ptr<CLogger> CLogger::Create(int defaultMinLevel, unsigned defaultMask)
{
    return std::make_unique<CLogger>(CreateListeners(defaultMinLevel, defaultMask));
}
} // namespace Orvik::Shared

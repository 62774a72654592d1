#include "wmievents/UpperCase.h"

#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
std::wstring UpperCase(std::wstring text)
{
    // Simple upper case keeps the length, so that it can be written where it is read.
    const int length = static_cast<int>(text.size());
    LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, text.data(), length, text.data(), length);
    return text;
}
} // namespace Notifications::OrvikWmiEvents

#include "app/dialogs/DialogText.h"

#include <iterator>

DialogText::DialogText(UINT stringId) noexcept
{
    LoadStringW(nullptr, stringId, m_szText, static_cast<int>(std::size(m_szText)));
}

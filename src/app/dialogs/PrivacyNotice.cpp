#include "app/dialogs/PrivacyNotice.h"

#include "shared/OwnerTypes.h"

#include <cwchar>
#include <iterator>

using Orvik::Shared::ReceiveInto;
using Orvik::Shared::UniqueFile;

namespace
{
// Empty, and so no file, for a folder whose path does not fit.
class MarkerPath
{
public:
    MarkerPath() noexcept
    {
        const DWORD length = GetTempPathW(MAX_PATH, m_szPath);
        if (length == 0 || length >= MAX_PATH)
            m_szPath[0] = L'\0';
        else
            std::wcscat(m_szPath, g_fileName);
    }

    [[nodiscard]] const wchar_t* Text() const noexcept { return m_szPath; }

private:
    static constexpr wchar_t g_fileName[] = L"IgnoreLumbraDialog.txt";

    wchar_t m_szPath[MAX_PATH + std::size(g_fileName)]{};
};

UniqueFile OpenMarker(const wchar_t* mode)
{
    UniqueFile file;
    static_cast<void>(_wfopen_s(ReceiveInto(file), MarkerPath().Text(), mode));
    return file;
}
} // namespace

bool IsPrivacyNoticeSilenced()
{
    return OpenMarker(L"r") != nullptr;
}

void SilencePrivacyNotice()
{
    if (const UniqueFile file = OpenMarker(L"w"))
        static_cast<void>(std::fprintf(file.get(), "%s", "true"));
}

void ReactivatePrivacyNotice()
{
    if (IsPrivacyNoticeSilenced())
        DeleteFileW(MarkerPath().Text());
}

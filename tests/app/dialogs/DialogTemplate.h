#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Tests
{
struct ControlTemplate
{
    std::uint32_t m_nId;
    std::wstring m_strClass; // the number of a system class as "#128"
    std::wstring m_strText;
    std::vector<int> m_lstPlace; // x, y, cx, cy in dialog units
    std::uint32_t m_nStyle;
    std::uint32_t m_nExStyle;

    bool operator==(const ControlTemplate&) const = default;
};

void PrintTo(const ControlTemplate& control, std::ostream* stream);

// An extended dialog template, read from the bytes of the program's resource.
struct DialogTemplate
{
    // Raises std::runtime_error when there is no such resource or when it has another form. The English one, unless a
    // language says otherwise.
    explicit DialogTemplate(UINT id, WORD language = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US));

    std::vector<int> m_lstPlace;
    std::uint32_t m_nStyle = 0;
    std::uint32_t m_nExStyle = 0;
    std::wstring m_strMenu;
    std::wstring m_strClass;
    std::wstring m_strCaption;
    int m_nPointSize = 0;
    int m_nWeight = 0;
    bool m_bItalic = false;
    std::wstring m_strFont;
    std::vector<ControlTemplate> m_lstControls;
};
} // namespace Tests

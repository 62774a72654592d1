#include "tests/app/dialogs/DialogTemplate.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

namespace Tests
{
namespace
{
// The bytes of a resource, front to back.
class Reader
{
public:
    Reader(UINT id, WORD language)
    {
        const HRSRC resource =
            FindResourceExW(nullptr, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(id), language); // RT_DIALOG
        const HGLOBAL loaded = resource != nullptr ? LoadResource(nullptr, resource) : nullptr;
        const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
        if (bytes == nullptr)
            throw std::runtime_error("no such dialog");
        m_lstBytes.resize(SizeofResource(nullptr, resource));
        std::memcpy(m_lstBytes.data(), bytes, m_lstBytes.size());
    }

    template <class Number>
    Number Read()
    {
        Number number{};
        if (m_nAt + sizeof(number) > m_lstBytes.size())
            throw std::runtime_error("the template ends early");
        std::memcpy(&number, m_lstBytes.data() + m_nAt, sizeof(number));
        m_nAt += sizeof(number);
        return number;
    }

    void ReadSignature()
    {
        if (Read<std::uint16_t>() != 1 || Read<std::uint16_t>() != 0xFFFF)
            throw std::runtime_error("not an extended template");
    }

    std::vector<int> ReadPlace()
    {
        std::vector<int> place;
        for (int i = 0; i < 4; ++i)
            place.push_back(Read<std::int16_t>());
        return place;
    }

    // A text up to its terminator, or a number behind 0xFFFF.
    std::wstring ReadName()
    {
        std::wstring name;
        for (auto character = Read<std::uint16_t>(); character != 0; character = Read<std::uint16_t>())
        {
            if (character == 0xFFFF && name.empty())
                return L"#" + std::to_wstring(Read<std::uint16_t>());
            name += static_cast<wchar_t>(character);
        }
        return name;
    }

    void Align() { m_nAt = (m_nAt + 3) / 4 * 4; }
    [[nodiscard]] bool IsAtEnd() const { return m_nAt >= m_lstBytes.size(); }

private:
    std::vector<unsigned char> m_lstBytes;
    std::size_t m_nAt = 0;
};

ControlTemplate ReadControl(Reader& reader)
{
    reader.Align();
    static_cast<void>(reader.Read<std::uint32_t>()); // help context
    ControlTemplate control{};
    control.m_nExStyle = reader.Read<std::uint32_t>();
    control.m_nStyle = reader.Read<std::uint32_t>();
    control.m_lstPlace = reader.ReadPlace();
    control.m_nId = reader.Read<std::uint32_t>();
    control.m_strClass = reader.ReadName();
    // The resource compiler leaves the name of a system class where a script has it.
    if (_wcsicmp(control.m_strClass.c_str(), L"STATIC") == 0)
        control.m_strClass = L"#130";
    control.m_strText = reader.ReadName();
    if (reader.Read<std::uint16_t>() != 0)
        throw std::runtime_error("a control with creation data");
    return control;
}
} // namespace

void PrintTo(const ControlTemplate& control, std::ostream* stream)
{
    *stream << "control " << control.m_nId << ' ' << testing::PrintToString(control.m_strClass) << ' '
            << testing::PrintToString(control.m_strText) << ' ' << testing::PrintToString(control.m_lstPlace)
            << std::hex << " style " << control.m_nStyle << " extended " << control.m_nExStyle << std::dec;
}

DialogTemplate::DialogTemplate(UINT id, WORD language)
{
    Reader reader(id, language);
    reader.ReadSignature();
    static_cast<void>(reader.Read<std::uint32_t>()); // help context
    m_nExStyle = reader.Read<std::uint32_t>();
    m_nStyle = reader.Read<std::uint32_t>();
    const auto controls = reader.Read<std::uint16_t>();
    m_lstPlace = reader.ReadPlace();
    m_strMenu = reader.ReadName();
    m_strClass = reader.ReadName();
    m_strCaption = reader.ReadName();
    m_nPointSize = reader.Read<std::uint16_t>();
    m_nWeight = reader.Read<std::uint16_t>();
    m_bItalic = reader.Read<std::uint8_t>() != 0;
    static_cast<void>(reader.Read<std::uint8_t>()); // character set
    m_strFont = reader.ReadName();
    for (int i = 0; i < controls; ++i)
        m_lstControls.push_back(ReadControl(reader));
    reader.Align();
    if (!reader.IsAtEnd())
        throw std::runtime_error("bytes behind the last control");
}
} // namespace Tests

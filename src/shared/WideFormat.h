#pragma once

#include <cstddef>
#include <type_traits>

namespace Orvik::Shared
{
namespace FormatCheck
{
// Not constexpr on purpose: a format that reaches one of these does not compile, and the name is the message.
[[noreturn]] void FormatHasMoreConversionsThanArguments();
[[noreturn]] void FormatHasFewerConversionsThanArguments();
[[noreturn]] void ArgumentDoesNotFitItsConversion();
[[noreturn]] void WidthMustStandInTheFormat();

enum class Kind
{
    Integer,
    Integer64,
    Real,
    WideText,
    NarrowText,
    Pointer,
    Other
};

template <class T>
consteval Kind KindOf()
{
    if constexpr (std::is_same_v<T, const wchar_t*> || std::is_same_v<T, wchar_t*>)
        return Kind::WideText;
    else if constexpr (std::is_same_v<T, const char*> || std::is_same_v<T, char*>)
        return Kind::NarrowText;
    else if constexpr (std::is_pointer_v<T>)
        return Kind::Pointer;
    else if constexpr (std::is_same_v<T, double> || std::is_same_v<T, float>)
        return Kind::Real;
    else if constexpr (std::is_integral_v<T> && sizeof(T) <= sizeof(int))
        return Kind::Integer;
    else if constexpr (std::is_integral_v<T>)
        return Kind::Integer64;
    else
        return Kind::Other;
}

consteval bool IsOneOf(wchar_t c, const wchar_t* set)
{
    for (; *set != L'\0'; ++set)
    {
        if (*set == c)
            return true;
    }
    return false;
}

// The part of a conversion between its precision and its letter.
struct Modifiers
{
    bool m_bNarrow = false;
    bool m_bWide = false;
    bool m_b64Bit = false;
};

consteval Modifiers ReadModifiers(const wchar_t*& p)
{
    Modifiers modifiers;
    if (p[0] == L'I' && p[1] == L'6' && p[2] == L'4')
    {
        modifiers.m_b64Bit = true;
        p += 3;
    }
    for (; IsOneOf(*p, L"hlL"); ++p)
    {
        modifiers.m_b64Bit |= *p == L'l' && modifiers.m_bWide;
        modifiers.m_bWide |= *p == L'l';
        modifiers.m_bNarrow |= *p == L'h';
    }
    return modifiers;
}

consteval Kind KindOfConversion(wchar_t conversion, Modifiers modifiers)
{
    if (conversion == L's')
        return modifiers.m_bNarrow ? Kind::NarrowText : Kind::WideText;
    if (conversion == L'S')
        return modifiers.m_bWide ? Kind::WideText : Kind::NarrowText;
    if (conversion == L'p')
        return Kind::Pointer;
    if (IsOneOf(conversion, L"eEfgG"))
        return Kind::Real;
    if (IsOneOf(conversion, L"dioxXu"))
        return modifiers.m_b64Bit ? Kind::Integer64 : Kind::Integer;
    if (conversion == L'c')
        return Kind::Integer;
    return Kind::Other;
}

// The kind of argument that the conversion takes which begins at p; p is left on its last character. Other for "%%".
consteval Kind ReadConversion(const wchar_t*& p)
{
    if (*++p == L'%')
        return Kind::Other;
    while (IsOneOf(*p, L"-+ #0123456789."))
        ++p;
    if (*p == L'*')
        WidthMustStandInTheFormat();
    const Modifiers modifiers = ReadModifiers(p);
    const Kind kind = KindOfConversion(*p, modifiers);
    if (kind == Kind::Other)
        ArgumentDoesNotFitItsConversion();
    return kind;
}
} // namespace FormatCheck

// A wide printf format of the Windows C runtime (%s wide, %S narrow) whose conversions are checked against the argument
// types while compiling: GCC has no such warning for wide formats. The text must be a literal; null counts as empty.
template <class... Args>
class WideFormat
{
public:
    consteval WideFormat(const wchar_t* text) : m_pText(text)
    {
        constexpr FormatCheck::Kind given[] = {FormatCheck::KindOf<Args>()..., FormatCheck::Kind::Other};
        std::size_t used = 0;
        for (const wchar_t* p = text; p != nullptr && *p != L'\0'; ++p)
        {
            if (*p != L'%')
                continue;
            const FormatCheck::Kind wanted = FormatCheck::ReadConversion(p);
            if (wanted == FormatCheck::Kind::Other)
                continue;
            if (used == sizeof...(Args))
                FormatCheck::FormatHasMoreConversionsThanArguments();
            if (given[used] != wanted)
                FormatCheck::ArgumentDoesNotFitItsConversion();
            ++used;
        }
        if (used != sizeof...(Args))
            FormatCheck::FormatHasFewerConversionsThanArguments();
    }

    [[nodiscard]] constexpr const wchar_t* Text() const noexcept { return m_pText; }

private:
    const wchar_t* m_pText;
};
} // namespace Orvik::Shared

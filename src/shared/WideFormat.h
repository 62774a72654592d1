#pragma once

#include <cstddef>
#include <type_traits>

namespace Orvik::Shared
{
namespace FormatCheck
{
// Not constexpr on purpose: a format that reaches one of these does not compile, and the name is the message.
void FormatHasMoreConversionsThanArguments();
void FormatHasFewerConversionsThanArguments();
void ArgumentDoesNotFitItsConversion();

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
    else if constexpr (std::is_same_v<T, double>)
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

consteval Kind KindOfConversion(wchar_t conversion, bool is64Bit)
{
    if (conversion == L's')
        return Kind::WideText;
    if (conversion == L'S')
        return Kind::NarrowText;
    if (conversion == L'p')
        return Kind::Pointer;
    if (conversion == L'f')
        return Kind::Real;
    if (IsOneOf(conversion, L"dixXuc"))
        return is64Bit ? Kind::Integer64 : Kind::Integer;
    return Kind::Other;
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
            ++p;
            if (*p == L'%')
                continue;
            while (FormatCheck::IsOneOf(*p, L"-+ #0123456789."))
                ++p;
            bool is64Bit = false;
            if (p[0] == L'I' && p[1] == L'6' && p[2] == L'4')
            {
                is64Bit = true;
                p += 3;
            }
            while (FormatCheck::IsOneOf(*p, L"hlL"))
                ++p;
            if (used == sizeof...(Args))
                FormatCheck::FormatHasMoreConversionsThanArguments();
            if (given[used] != FormatCheck::KindOfConversion(*p, is64Bit))
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

#pragma once

#include <cstddef>

namespace Orvik::Shared
{
// A compiler's description of a function, as a value that a template takes.
template <std::size_t Size>
struct FunctionSignature
{
    char m_text[Size];

    consteval FunctionSignature(const char (&text)[Size]) : m_text{}
    {
        for (std::size_t i = 0; i < Size; ++i)
            m_text[i] = text[i];
    }
};

template <std::size_t Size>
struct FunctionNameText
{
    char m_text[Size];
};

// Cuts "virtual long int N::C::F(int) const" to "N::C::F"; a function outside any class or namespace keeps its bare
// name, and the marker of an unnamed namespace is left out.
template <std::size_t Size>
consteval FunctionNameText<Size> CutToQualifiedName(const FunctionSignature<Size>& signature)
{
    std::size_t end = 0;
    while (end < Size - 1 && signature.m_text[end] != '(')
        ++end;
    std::size_t begin = end;
    while (begin > 0 && signature.m_text[begin - 1] != ' ' && signature.m_text[begin - 1] != '*' &&
           signature.m_text[begin - 1] != '&')
        --begin;

    FunctionNameText<Size> name{};
    std::size_t length = 0;
    for (std::size_t i = begin; i < end; ++i)
    {
        if (signature.m_text[i] == '{')
        {
            while (signature.m_text[i] != '}')
                ++i;
            i += 2;
            continue;
        }
        name.m_text[length++] = signature.m_text[i];
    }
    return name;
}

template <FunctionSignature Signature>
inline constexpr auto g_functionName = CutToQualifiedName(Signature);
} // namespace Orvik::Shared

// The qualified name of the function in which it stands, as a narrow string that lives for the whole run.
#define ORVIK_FUNCTION (::Orvik::Shared::g_functionName<__PRETTY_FUNCTION__>.m_text)

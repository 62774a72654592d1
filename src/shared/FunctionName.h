#pragma once

#include <cstddef>
#include <string_view>

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

// The part of a description that is the qualified name: from the last blank, '*' or '&' outside angle brackets to the
// parenthesis of the parameters.
consteval std::string_view FindQualifiedName(std::string_view signature)
{
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t i = 0; i < signature.size(); ++i)
    {
        const char c = signature[i];
        if (c == '<')
            ++depth;
        else if (c == '>')
            --depth;
        else if (depth == 0 && c == '(' && signature.substr(i).starts_with("(anonymous namespace)"))
            i += std::string_view("(anonymous namespace)").size() - 1;
        else if (depth == 0 && c == '(')
            return signature.substr(begin, i - begin);
        else if (depth == 0 && (c == ' ' || c == '*' || c == '&'))
            begin = i + 1;
    }
    return signature.substr(begin);
}

// Cuts "virtual long int N::C::F(int) const" to "N::C::F"; a function outside any class or namespace keeps its bare
// name, and the marker of an unnamed namespace is left out.
template <std::size_t Size>
consteval FunctionNameText<Size> CutToQualifiedName(const FunctionSignature<Size>& signature)
{
    std::string_view rest = FindQualifiedName({signature.m_text, Size - 1});
    FunctionNameText<Size> name{};
    std::size_t length = 0;
    while (!rest.empty())
    {
        bool isMarker = false;
        for (const std::string_view marker : {"{anonymous}::", "(anonymous namespace)::"})
        {
            if (rest.starts_with(marker))
            {
                rest.remove_prefix(marker.size());
                isMarker = true;
            }
        }
        if (isMarker)
            continue;
        name.m_text[length++] = rest.front();
        rest.remove_prefix(1);
    }
    return name;
}

template <FunctionSignature Signature>
inline constexpr auto g_functionName = CutToQualifiedName(Signature);
} // namespace Orvik::Shared

// The qualified name of the function in which it stands, as a narrow string that lives for the whole run. Not for use
// inside a lambda.
#define ORVIK_FUNCTION (::Orvik::Shared::g_functionName<__PRETTY_FUNCTION__>.m_text)

#include "tests/logfile/LinesByWriter.h"

#include <cstdio>
#include <stdexcept>

std::wstring TextOf(unsigned writer, unsigned number)
{
    std::wstring digits = std::to_wstring(number);
    digits.insert(0, 8 - digits.size(), L'0');
    return L"writer " + std::to_wstring(writer) + L" record " + digits + L" end";
}

void LinesByWriter::Add(std::string_view message)
{
    unsigned writer = 0;
    unsigned number = 0;
    const std::string text(message);
    if (std::sscanf(text.c_str(), "writer %u record %u", &writer, &number) != 2)
        throw std::runtime_error("a foreign message: " + text);
    const std::wstring expected = TextOf(writer, number);
    if (text != std::string(expected.begin(), expected.end()))
        throw std::runtime_error("a broken message: " + text);
    const auto [last, isFirst] = m_mapLast.try_emplace(writer, 0);
    const bool isNext = number == last->second + 1 || (isFirst && m_mayMiss == MayMiss::Beginning);
    if (!isNext && (m_mayMiss != MayMiss::Any || number <= last->second))
        throw std::runtime_error("out of order behind " + std::to_string(last->second) + ": " + text);
    last->second = number;
}

unsigned LinesByWriter::LastOf(unsigned writer) const
{
    const auto found = m_mapLast.find(writer);
    return found != m_mapLast.end() ? found->second : 0;
}

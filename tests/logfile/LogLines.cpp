#include "tests/logfile/LogLines.h"

#include <windows.h>

#include <cctype>
#include <stdexcept>

namespace
{
// 0 stands for any digit or letter of a hexadecimal number, a for any character.
constexpr std::string_view g_pattern = "0000/00/00 00:00:00.000|00000000|aaaaaaaaaaa|N::C::F|";

bool Matches(std::string_view line)
{
    if (line.size() < g_pattern.size())
        return false;
    for (std::size_t i = 0; i < g_pattern.size(); ++i)
    {
        const char expected = g_pattern[i];
        const bool fits = expected == '0'   ? std::isxdigit(static_cast<unsigned char>(line[i])) != 0
                          : expected == 'a' ? line[i] != '|'
                                            : line[i] == expected;
        if (!fits)
            return false;
    }
    return true;
}

[[noreturn]] void Complain(const char* complaint, std::string_view text)
{
    throw std::runtime_error(std::string(complaint) + ": " + std::string(text.substr(0, 200)));
}
} // namespace

LogRecord MakeRecord(std::wstring_view message)
{
    return {Orvik::Shared::Level::Error, "N::C::F", std::wstring(message).c_str()};
}

std::string LineOf(const LogRecord& record)
{
    const std::wstring line = record.GetLine() + L"\r\n";
    const int length = static_cast<int>(line.size());
    std::string bytes(line.size() * 3, '\0');
    bytes.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, line.c_str(), length, bytes.data(),
                                                              static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

std::string MessageOf(std::string_view line)
{
    if (!Matches(line))
        Complain("no whole line", line);
    const std::string_view message = line.substr(g_pattern.size());
    if (message.find_first_of("\r\n") != std::string_view::npos ||
        message.find(ByteOrderMark) != std::string_view::npos)
        Complain("two lines in one", line);
    return std::string(message);
}

std::vector<std::string> MessagesIn(std::string_view bytes)
{
    if (!bytes.starts_with(ByteOrderMark))
        Complain("no mark at the start", bytes);
    bytes.remove_prefix(ByteOrderMark.size());
    std::vector<std::string> messages;
    while (!bytes.empty())
    {
        const std::size_t end = bytes.find("\r\n");
        if (end == std::string_view::npos)
            Complain("no line's end", bytes);
        messages.push_back(MessageOf(bytes.substr(0, end)));
        bytes.remove_prefix(end + 2);
    }
    return messages;
}

std::vector<std::string> Numbered(std::string_view prefix, unsigned count)
{
    std::vector<std::string> texts;
    for (unsigned i = 1; i <= count; ++i)
        texts.push_back(std::string(prefix) + " " + std::to_string(i));
    return texts;
}

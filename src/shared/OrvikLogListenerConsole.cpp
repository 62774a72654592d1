#include "shared/OrvikLogListenerConsole.h"

#include "shared/LogData.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace Orvik::Shared
{
namespace
{
// The runtime library drops a line from the first character on that the stream's code page lacks.
std::wstring Printable(std::wstring text)
{
    const auto isLacking = [](wchar_t c)
    {
        char bytes[MB_LEN_MAX];
        return std::wctomb(bytes, c) < 0;
    };
    std::ranges::replace_if(text, isLacking, L'?');
    return text;
}
} // namespace

void COrvikLogListenerConsole::Write(const LogData& data)
{
    // The runtime library's own routine: it holds the stream for the whole line, mingw's replacement does not.
    __ms_fwprintf(stdout, L"%S : %s\r\n", data.FunctionName().c_str(), Printable(data.Message()).c_str());
}
} // namespace Orvik::Shared

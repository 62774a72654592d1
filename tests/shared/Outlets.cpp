#include "tests/shared/Outlets.h"

#include <io.h>

#include <cstdio>
#include <stdexcept>
#include <utility>

namespace
{
Outlets* g_current;
std::vector<std::string> g_arrivals;
std::vector<std::wstring> g_debugTexts;
std::size_t g_printedBefore;

WINBOOL WINAPI CountedReportEvent(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, LPCWSTR*, LPVOID)
{
    g_current->NotePrinted();
    g_arrivals.emplace_back("event");
    return TRUE;
}

void WINAPI KeptDebugString(LPCWSTR text)
{
    g_current->NotePrinted();
    g_arrivals.emplace_back("debug");
    g_debugTexts.emplace_back(text);
}

std::wstring TemporaryFile()
{
    wchar_t folder[MAX_PATH];
    wchar_t file[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    if (GetTempFileNameW(folder, L"out", 0, file) == 0)
        throw std::runtime_error("no temporary file");
    return file;
}
} // namespace

Outlets::Outlets()
    : m_reportEvent("ReportEventW", &CountedReportEvent), m_debugString("OutputDebugStringW", &KeptDebugString),
      m_strPrintFile(TemporaryFile())
{
    g_current = this;
    g_arrivals.clear();
    g_debugTexts.clear();
    g_printedBefore = 0;
    std::fflush(stdout);
    m_nRealOutput = _dup(_fileno(stdout));
    std::FILE* file = _wfopen(m_strPrintFile.c_str(), L"w");
    _dup2(_fileno(file), _fileno(stdout));
    std::fclose(file);
}

Outlets::~Outlets()
{
    std::fflush(stdout);
    _dup2(m_nRealOutput, _fileno(stdout));
    _close(m_nRealOutput);
    DeleteFileW(m_strPrintFile.c_str());
}

std::string Outlets::Printed()
{
    std::fflush(stdout);
    std::FILE* file = _wfopen(m_strPrintFile.c_str(), L"rb");
    std::string bytes;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        bytes.push_back(static_cast<char>(c));
    std::fclose(file);
    return bytes;
}

void Outlets::NotePrinted()
{
    const std::size_t printed = Printed().size();
    if (printed != std::exchange(g_printedBefore, printed))
        g_arrivals.emplace_back("console");
}

std::vector<std::string> Outlets::Take()
{
    NotePrinted();
    return std::exchange(g_arrivals, {});
}

const std::vector<std::wstring>& Outlets::DebugTexts() const
{
    return g_debugTexts;
}

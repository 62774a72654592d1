#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <string>

// For the life of the object the temporary folder of this program is an empty folder of its own, or whatever Answer
// said.
class TemporaryFolder
{
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    // With a backslash at the end.
    [[nodiscard]] const std::wstring& Path() const noexcept { return m_strPath; }

    // GetTempPathW gives that text from now on, or with 0 fails, or with a number asks for that much room.
    static void Answer(const std::wstring& text);
    static void AnswerLength(DWORD length);
    // Room that the last call of GetTempPathW offered, in wide characters.
    [[nodiscard]] static DWORD OfferedRoom();

    void WriteFile(const std::wstring& name, const std::string& content) const;
    // "(none)" when it does not exist.
    [[nodiscard]] std::string ReadFile(const std::wstring& name) const;

private:
    std::wstring m_strPath;
    Simulator::Redirection<decltype(GetTempPathW)> m_redirection;
};

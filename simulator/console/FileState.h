#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Simulator
{
// A file or folder that a scenario wants to be there, or not.
struct FileState
{
    std::wstring m_strPath; // may hold %VARIABLES%
    std::string m_strText;
    bool m_bFolder = false;
    bool m_bRemove = false;
};

// A list of {"path": text, "text": content} or {"path", "folder": true} or {"path", "remove": true}.
// Throws UsageError.
[[nodiscard]] std::vector<FileState> ReadFileStates(const nlohmann::json& list, const std::string& place);

// Makes it so, with the folders above it. Throws StepFailure.
void Apply(const FileState& file);
} // namespace Simulator

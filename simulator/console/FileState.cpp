#include "simulator/console/FileState.h"

#include "simulator/console/Environment.h"
#include "simulator/console/ObjectReader.h"
#include "simulator/doubles/JournalText.h"

#include <filesystem>
#include <fstream>

namespace Simulator
{
namespace
{
FileState ReadFileState(const nlohmann::json& object, const std::string& place)
{
    ObjectReader reader(object, place);
    FileState file;
    file.m_strPath = Wide(reader.Get<std::string>("path"));
    file.m_strText = reader.Get<std::string>("text", "");
    file.m_bFolder = reader.Get<bool>("folder", false);
    file.m_bRemove = reader.Get<bool>("remove", false);
    reader.Finish();
    return file;
}
} // namespace

std::vector<FileState> ReadFileStates(const nlohmann::json& list, const std::string& place)
{
    if (!list.is_array())
        throw UsageError(place + ": a list is expected");
    std::vector<FileState> files;
    files.reserve(list.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        files.push_back(ReadFileState(list[i], place + "/" + std::to_string(i)));
    return files;
}

void Apply(const FileState& file)
{
    const std::filesystem::path path = ExpandVariables(file.m_strPath);
    std::error_code failure;
    if (file.m_bRemove)
        std::filesystem::remove_all(path, failure);
    else if (file.m_bFolder)
        std::filesystem::create_directories(path, failure);
    else
    {
        std::filesystem::create_directories(path.parent_path(), failure);
        if (!failure && !(std::ofstream(path, std::ios::binary) << file.m_strText))
            failure = std::make_error_code(std::errc::io_error);
    }
    if (failure)
        throw StepFailure(Narrow(path.native()) + ": " + failure.message());
}
} // namespace Simulator

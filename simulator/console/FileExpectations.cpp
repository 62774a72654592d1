#include "simulator/console/Step.h"
#include "simulator/doubles/JournalText.h"

#include <cstring>
#include <fstream>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

#pragma pack(push, 2)
// The beginning of an icon file, and one for each image behind it.
struct IconHeader
{
    WORD m_reserved;
    WORD m_type;
    WORD m_images;
};

struct IconEntry
{
    BYTE m_size[4];
    WORD m_planes;
    WORD m_bits;
    DWORD m_dwBytes;
    DWORD m_dwOffset;
};
#pragma pack(pop)

std::string ReadContent(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

template <class Part>
bool ReadPart(const std::string& content, std::size_t offset, Part& part)
{
    if (content.size() < offset + sizeof(part))
        return false;
    std::memcpy(&part, content.data() + offset, sizeof(part));
    return true;
}

// An icon file whose images are all there and end where the file ends.
bool IsWholeIcon(const std::string& content)
{
    IconHeader header{};
    if (!ReadPart(content, 0, header) || header.m_reserved != 0 || header.m_type != 1 || header.m_images == 0)
        return false;
    std::size_t end = 0;
    for (std::size_t i = 0; i != header.m_images; ++i)
    {
        IconEntry entry{};
        if (!ReadPart(content, sizeof(header) + i * sizeof(entry), entry))
            return false;
        end = std::max<std::size_t>(end, std::size_t{entry.m_dwOffset} + entry.m_dwBytes);
    }
    return end == content.size();
}

// {"path": text, "exists": true}, and of a file that is there also {"text": all of its content}, {"icon": true} for an
// icon file that is whole.
Action ReadExpectFile(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const std::wstring written = Wide(reader.Get<std::string>("path"));
    const auto exists = reader.Get<bool>("exists", true);
    const auto icon = reader.Get<bool>("icon", false);
    const bool hasText = reader.Find("text") != nullptr;
    const auto text = reader.Get<std::string>("text", "");
    reader.Finish();
    if (!exists && (icon || hasText))
        reader.Complain("a file that is not there has no content");
    return [=](ScenarioRun&)
    {
        const std::wstring path = ExpandVariables(written);
        if (std::filesystem::exists(path) != exists)
            throw StepFailure(Narrow(path) + (exists ? " is missing" : " is there"));
        if (hasText && ReadContent(path) != text)
            throw StepFailure(Narrow(path) + " holds another text");
        if (icon && !IsWholeIcon(ReadContent(path)))
            throw StepFailure(Narrow(path) + " is no whole icon file");
    };
}
} // namespace

std::vector<StepKind> FileExpectations()
{
    return {{"expect-file", &ReadExpectFile}};
}
} // namespace Simulator

#pragma once

#include "tests/res/AgentModule.h"

#include <optional>

namespace ResourceTests
{

struct IconImage
{
    unsigned width = 0;
    unsigned height = 0;
    unsigned bitsPerPixel = 0;
    Bytes data;
};

// The images of a whole .ico file; nothing when the file is not sound.
[[nodiscard]] std::optional<std::vector<IconImage>> ReadIconFile(Bytes file);

// The images of an icon group and of the icon resources that it names; nothing when either is not sound.
[[nodiscard]] std::optional<std::vector<IconImage>> ReadIconGroup(const CAgentModule& module, WORD group);

// Whether the data is what its entry says: a PNG or an uncompressed bitmap with colors and mask of exactly that size.
[[nodiscard]] bool IsSoundImage(const IconImage& image);

[[nodiscard]] bool IsPng(Bytes data);

} // namespace ResourceTests

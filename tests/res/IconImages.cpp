#include "tests/res/IconImages.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ResourceTests
{

namespace
{

constexpr size_t HeaderSize = 6;
constexpr size_t FileEntrySize = 16;
constexpr size_t GroupEntrySize = 14;

template <typename Value>
Value Read(Bytes bytes, size_t offset)
{
    Value value = {};
    std::memcpy(&value, bytes.data() + offset, sizeof(value));
    return value;
}

// Fields that file and group entries share: width, height, colors, reserved, planes, bits per pixel, size.
IconImage ReadEntry(Bytes entry)
{
    const auto side = [entry](size_t offset)
    {
        const auto value = Read<BYTE>(entry, offset);
        return value == 0 ? 256u : value;
    };
    return {.width = side(0), .height = side(1), .bitsPerPixel = Read<WORD>(entry, 6), .data = {}};
}

// Number of entries; 0 when the header is not that of an icon or the entries do not fit.
size_t CountEntries(Bytes directory, size_t entrySize)
{
    if (directory.size() < HeaderSize || Read<WORD>(directory, 0) != 0 || Read<WORD>(directory, 2) != 1)
    {
        return 0;
    }
    const size_t count = Read<WORD>(directory, 4);
    return directory.size() >= HeaderSize + count * entrySize ? count : 0;
}

DWORD BigEndian(Bytes bytes, size_t offset)
{
    DWORD value = 0;
    for (size_t index = 0; index < sizeof(value); ++index)
    {
        value = value << 8 | std::to_integer<DWORD>(bytes[offset + index]);
    }
    return value;
}

} // namespace

std::optional<std::vector<IconImage>> ReadIconFile(Bytes file)
{
    const size_t count = CountEntries(file, FileEntrySize);
    if (count == 0)
    {
        return std::nullopt;
    }
    std::vector<IconImage> images;
    size_t expectedOffset = HeaderSize + count * FileEntrySize;
    for (size_t index = 0; index < count; ++index)
    {
        const Bytes entry = file.subspan(HeaderSize + index * FileEntrySize, FileEntrySize);
        const size_t size = Read<DWORD>(entry, 8);
        const size_t offset = Read<DWORD>(entry, 12);
        if (offset != expectedOffset || size > file.size() - offset)
        {
            return std::nullopt;
        }
        IconImage image = ReadEntry(entry);
        image.data = file.subspan(offset, size);
        images.push_back(image);
        expectedOffset = offset + size;
    }
    return expectedOffset == file.size() ? std::optional(images) : std::nullopt;
}

std::optional<std::vector<IconImage>> ReadIconGroup(const CAgentModule& module, WORD group)
{
    const Bytes directory = module.Resource(TypeNumber(RT_GROUP_ICON), group, English);
    const size_t count = CountEntries(directory, GroupEntrySize);
    if (count == 0)
    {
        return std::nullopt;
    }
    std::vector<IconImage> images;
    for (size_t index = 0; index < count; ++index)
    {
        const Bytes entry = directory.subspan(HeaderSize + index * GroupEntrySize, GroupEntrySize);
        IconImage image = ReadEntry(entry);
        image.data = module.Resource(TypeNumber(RT_ICON), Read<WORD>(entry, 12), English);
        if (image.data.empty() || image.data.size() != Read<DWORD>(entry, 8))
        {
            return std::nullopt;
        }
        images.push_back(image);
    }
    return images;
}

bool IsPng(Bytes data)
{
    constexpr std::array<BYTE, 8> signature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    return data.size() > 33 && std::memcmp(data.data(), signature.data(), signature.size()) == 0;
}

bool IsSoundImage(const IconImage& image)
{
    if (IsPng(image.data))
    {
        return BigEndian(image.data, 16) == image.width && BigEndian(image.data, 20) == image.height;
    }
    if (image.data.size() < sizeof(BITMAPINFOHEADER))
    {
        return false;
    }
    const auto header = Read<BITMAPINFOHEADER>(image.data, 0);
    const size_t maskStride = (image.width + 31) / 32 * 4;
    const size_t size = sizeof(header) + size_t{image.width} * image.height * 4 + maskStride * image.height;
    return header.biSize == sizeof(header) && header.biWidth == static_cast<LONG>(image.width) &&
           header.biHeight == static_cast<LONG>(2 * image.height) && header.biPlanes == 1 && header.biBitCount == 32 &&
           header.biCompression == BI_RGB && image.data.size() == size;
}

} // namespace ResourceTests

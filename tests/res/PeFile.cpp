#include "tests/res/PeFile.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ResourceTests
{

CPeFile::CPeFile(std::vector<std::byte> content) : m_content(std::move(content))
{
    const auto dosHeader = Read<IMAGE_DOS_HEADER>(0);
    const auto headersAt = static_cast<size_t>(dosHeader.e_lfanew);
    m_headers = Read<IMAGE_NT_HEADERS64>(headersAt);
    if (dosHeader.e_magic != IMAGE_DOS_SIGNATURE || m_headers.Signature != IMAGE_NT_SIGNATURE ||
        m_headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
    {
        throw std::runtime_error("not a 64-bit program");
    }
    const size_t sectionsAt =
        headersAt + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + m_headers.FileHeader.SizeOfOptionalHeader;
    for (size_t index = 0; index < m_headers.FileHeader.NumberOfSections; ++index)
    {
        m_sections.push_back(Read<IMAGE_SECTION_HEADER>(sectionsAt + index * sizeof(IMAGE_SECTION_HEADER)));
    }
}

CPeFile CPeFile::Open(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::vector<std::byte> content;
    std::transform(std::istreambuf_iterator<char>(file), {}, std::back_inserter(content),
                   [](char value) { return static_cast<std::byte>(value); });
    if (!file)
    {
        throw std::runtime_error("the file cannot be read");
    }
    return CPeFile(std::move(content));
}

IMAGE_DATA_DIRECTORY CPeFile::Directory(unsigned index) const
{
    return index < OptionalHeader().NumberOfRvaAndSizes ? OptionalHeader().DataDirectory[index]
                                                        : IMAGE_DATA_DIRECTORY{};
}

std::vector<std::string> CPeFile::SectionNames() const
{
    std::vector<std::string> names;
    for (const IMAGE_SECTION_HEADER& section : m_sections)
    {
        const auto* name = reinterpret_cast<const char*>(section.Name);
        names.emplace_back(name, strnlen(name, IMAGE_SIZEOF_SHORT_NAME));
    }
    return names;
}

ImportTable CPeFile::Imports() const
{
    ImportTable imports;
    const DWORD table = Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress;
    for (DWORD address = table; address != 0; address += sizeof(IMAGE_IMPORT_DESCRIPTOR))
    {
        const auto descriptor = Read<IMAGE_IMPORT_DESCRIPTOR>(OffsetOf(address));
        if (descriptor.Name == 0)
        {
            break;
        }
        std::string library = TextAt(descriptor.Name);
        std::ranges::transform(library, library.begin(),
                               [](char c) { return c >= 'A' && c <= 'Z' ? char(c | 0x20) : c; });
        imports[library].merge(FunctionsAt(descriptor.OriginalFirstThunk));
    }
    return imports;
}

std::set<std::string> CPeFile::FunctionsAt(DWORD address) const
{
    std::set<std::string> functions;
    for (;; address += sizeof(IMAGE_THUNK_DATA64))
    {
        const auto entry = Read<IMAGE_THUNK_DATA64>(OffsetOf(address)).u1.AddressOfData;
        if (entry == 0)
        {
            return functions;
        }
        functions.insert(IMAGE_SNAP_BY_ORDINAL64(entry)
                             ? "#" + std::to_string(IMAGE_ORDINAL64(entry))
                             : TextAt(static_cast<DWORD>(entry) + offsetof(IMAGE_IMPORT_BY_NAME, Name)));
    }
}

template <typename Value>
Value CPeFile::Read(size_t offset) const
{
    if (offset > m_content.size() || m_content.size() - offset < sizeof(Value))
    {
        throw std::runtime_error("the file ends early");
    }
    Value value;
    std::memcpy(&value, m_content.data() + offset, sizeof(value));
    return value;
}

size_t CPeFile::OffsetOf(DWORD address) const
{
    for (const IMAGE_SECTION_HEADER& section : m_sections)
    {
        if (address >= section.VirtualAddress && address - section.VirtualAddress < section.SizeOfRawData)
        {
            return section.PointerToRawData + size_t{address - section.VirtualAddress};
        }
    }
    throw std::runtime_error("an address lies in no section");
}

std::string CPeFile::TextAt(DWORD address) const
{
    std::string text;
    for (size_t offset = OffsetOf(address);; ++offset)
    {
        const char character = Read<char>(offset);
        if (character == '\0')
        {
            return text;
        }
        text += character;
    }
}

} // namespace ResourceTests

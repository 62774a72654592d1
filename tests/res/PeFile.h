#pragma once

#include "tests/res/AgentModule.h"

#include <map>
#include <set>

namespace ResourceTests
{

// Library name in lower case, then the functions that are imported from it; an import by number is "#" and the number.
using ImportTable = std::map<std::string, std::set<std::string>>;

// A 64-bit program read as the bytes on disk. Every read is checked against the file's size: a broken file throws
// std::runtime_error.
class CPeFile
{
public:
    explicit CPeFile(std::vector<std::byte> content);

    // Reads a whole file; throws std::runtime_error when it cannot be read.
    [[nodiscard]] static CPeFile Open(const std::wstring& path);

    [[nodiscard]] const IMAGE_FILE_HEADER& FileHeader() const { return m_headers.FileHeader; }
    [[nodiscard]] const IMAGE_OPTIONAL_HEADER64& OptionalHeader() const { return m_headers.OptionalHeader; }
    [[nodiscard]] IMAGE_DATA_DIRECTORY Directory(unsigned index) const;

    [[nodiscard]] const std::vector<IMAGE_SECTION_HEADER>& Sections() const { return m_sections; }

    // Names of the sections, in order.
    [[nodiscard]] std::vector<std::string> SectionNames() const;

    [[nodiscard]] ImportTable Imports() const;

private:
    template <typename Value>
    [[nodiscard]] Value Read(size_t offset) const;
    [[nodiscard]] size_t OffsetOf(DWORD address) const;
    [[nodiscard]] std::string TextAt(DWORD address) const;
    [[nodiscard]] std::set<std::string> FunctionsAt(DWORD address) const;

    std::vector<std::byte> m_content;
    IMAGE_NT_HEADERS64 m_headers = {};
    std::vector<IMAGE_SECTION_HEADER> m_sections;
};

} // namespace ResourceTests

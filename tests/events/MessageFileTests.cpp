#include "tests/events/MessageFile.h"
#include "tests/res/PeFile.h"

#include <gtest/gtest.h>

namespace EventMessageTests
{
namespace
{
using ResourceTests::CPeFile;

class MessageFile : public testing::Test
{
protected:
    CPeFile m_file = CPeFile::Open(MessageFilePath());
};

BOOL CALLBACK CollectType(HMODULE, wchar_t* type, LONG_PTR types)
{
    reinterpret_cast<std::vector<WORD>*>(types)->push_back(IS_INTRESOURCE(type) ? ResourceTests::TypeNumber(type)
                                                                                : WORD{0});
    return TRUE;
}

TEST_F(MessageFile, File_IsA64BitLibraryWithoutCode)
{
    EXPECT_EQ(m_file.FileHeader().Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_NE(m_file.FileHeader().Characteristics & IMAGE_FILE_DLL, 0);
    EXPECT_EQ(m_file.OptionalHeader().AddressOfEntryPoint, 0u);
    EXPECT_TRUE(m_file.Imports().empty());
    EXPECT_EQ(m_file.OptionalHeader().SizeOfCode, 0u);
    // The linker's two lists of constructors, both empty, are all that stands where code would.
    constexpr DWORD lists = 2 * 2 * sizeof(void*);
    for (const IMAGE_SECTION_HEADER& section : m_file.Sections())
    {
        const bool isCode = (section.Characteristics & IMAGE_SCN_MEM_EXECUTE) != 0;
        EXPECT_LE(isCode ? section.Misc.VirtualSize : 0, lists);
    }
}

TEST_F(MessageFile, Resources_AreMessagesAndVersion)
{
    const CMessageFile file;
    std::vector<WORD> types;
    EnumResourceTypesW(file.Handle(), CollectType, reinterpret_cast<LONG_PTR>(&types));
    EXPECT_EQ(types, (std::vector<WORD>{11, 16}));
}

TEST_F(MessageFile, TimeOfBuild_IsNotWritten)
{
    EXPECT_EQ(m_file.FileHeader().TimeDateStamp, 0u);
}

TEST_F(MessageFile, Size_IsSmall)
{
    WIN32_FILE_ATTRIBUTE_DATA file{};
    ASSERT_TRUE(GetFileAttributesExW(MessageFilePath().c_str(), GetFileExInfoStandard, &file));
    EXPECT_LT(file.nFileSizeLow, 32768u);
}

// Loaded as a program's library too, it runs nothing.
TEST_F(MessageFile, Library_CanBeLoaded)
{
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> library(
        LoadLibraryW(MessageFilePath().c_str()), &FreeLibrary);
    EXPECT_NE(library, nullptr) << GetLastError();
}
} // namespace
} // namespace EventMessageTests

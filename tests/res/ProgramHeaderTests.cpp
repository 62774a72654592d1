#include "tests/res/PeFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ResourceTests
{

namespace
{

class ProgramHeader : public testing::Test
{
protected:
    CPeFile m_agent = CPeFile::Open(AgentPath());
};

TEST_F(ProgramHeader, Program_Is64BitAndWindowed)
{
    EXPECT_EQ(m_agent.FileHeader().Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_EQ(m_agent.OptionalHeader().Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
    EXPECT_EQ(m_agent.FileHeader().Characteristics & IMAGE_FILE_DLL, 0);
}

TEST_F(ProgramHeader, SubsystemVersion_IsThatOfWindows7)
{
    EXPECT_EQ(m_agent.OptionalHeader().MajorSubsystemVersion, 6);
    EXPECT_EQ(m_agent.OptionalHeader().MinorSubsystemVersion, 1);
}

TEST_F(ProgramHeader, Hardening_IsOn)
{
    const WORD flags = m_agent.OptionalHeader().DllCharacteristics;
    EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, 0);
    EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA, 0);
    EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
}

// Without relocations the flags alone move nothing.
TEST_F(ProgramHeader, Relocations_AreThere)
{
    EXPECT_EQ(m_agent.FileHeader().Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
    EXPECT_GT(m_agent.Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size, 0u);
    EXPECT_GT(m_agent.OptionalHeader().ImageBase, 0xFFFFFFFFull);
}

TEST_F(ProgramHeader, TimeOfBuild_IsNotWritten)
{
    EXPECT_EQ(m_agent.FileHeader().TimeDateStamp, 0u);
}

TEST_F(ProgramHeader, Sections_NoneIsWritableAndExecutable)
{
    const auto names = m_agent.SectionNames();
    EXPECT_NE(std::ranges::find(names, ".rsrc"), names.end());
    for (const IMAGE_SECTION_HEADER& section : m_agent.Sections())
    {
        constexpr DWORD both = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
        EXPECT_NE(section.Characteristics & both, both);
    }
}

} // namespace

} // namespace ResourceTests

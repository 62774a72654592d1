#include "tests/res/PeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace ResourceTests
{

namespace
{

// The list of what Windows 7 offers: "[library]" begins a library, every further line is one function, "#" a comment.
ImportTable ReadList()
{
    ImportTable list;
    std::ifstream file(std::filesystem::path(WindowsPath(ORVIK_IMPORT_LIST_PATH)));
    std::string line;
    std::string library;
    while (std::getline(file, line))
    {
        if (line.ends_with('\r'))
        {
            line.pop_back();
        }
        if (line.starts_with('[') && line.ends_with(']'))
        {
            library = line.substr(1, line.size() - 2);
            list[library];
        }
        else if (!line.empty() && !line.starts_with('#'))
        {
            list[library].insert(line);
        }
    }
    return list;
}

class Imports : public testing::Test
{
protected:
    ImportTable m_list = ReadList();
    ImportTable m_imports = CPeFile::Open(AgentPath()).Imports();
};

TEST_F(Imports, EveryLibrary_ComesWithWindows7)
{
    ASSERT_FALSE(m_list.empty());
    ASSERT_TRUE(m_imports.contains("kernel32.dll"));
    for (const auto& [library, functions] : m_imports)
    {
        EXPECT_TRUE(m_list.contains(library)) << library << " is not a library of Windows 7 that the agent may import";
    }
}

TEST_F(Imports, EveryFunction_ExistsInWindows7)
{
    std::vector<std::string> unknown;
    for (const auto& [library, functions] : m_imports)
    {
        for (const std::string& function : functions)
        {
            if (!m_list[library].contains(function))
            {
                unknown.push_back(library + " " + function);
            }
        }
    }
    EXPECT_THAT(unknown, testing::IsEmpty())
        << "If its documentation names Windows 7 or older as minimum, add the function to windows7-imports.txt; "
        << "otherwise look it up at run time.";
}

// No delayed and no bound imports: their names would escape the two tests above.
TEST_F(Imports, OtherImportTables_AreAbsent)
{
    const CPeFile agent = CPeFile::Open(AgentPath());
    EXPECT_EQ(agent.Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT).VirtualAddress, 0u);
    EXPECT_EQ(agent.Directory(IMAGE_DIRECTORY_ENTRY_BOUND_IMPORT).VirtualAddress, 0u);
}

// Functions that came after Windows 7 and are easily added by mistake.
TEST_F(Imports, List_HoldsNothingNewer)
{
    const ImportTable newer = {
        {"kernel32.dll",
         {"AddDllDirectory", "CreateFile2", "GetCurrentPackageFullName", "GetSystemTimePreciseAsFileTime",
          "GetThreadDescription", "IsWow64Process2", "QueryUnbiasedInterruptTimePrecise", "SetDefaultDllDirectories",
          "SetThreadDescription", "WaitOnAddress", "WakeByAddressAll", "WakeByAddressSingle"}},
        {"ole32.dll", {"CoDecrementMTAUsage", "CoIncrementMTAUsage", "RoGetActivationFactory", "RoInitialize"}},
        {"user32.dll", {"GetDpiForSystem", "GetDpiForWindow", "SetProcessDpiAwarenessContext"}},
        {"msvcrt.dll", {"_wcstod_l", "_create_locale", "__AdjustPointer"}},
    };
    for (const auto& [library, functions] : newer)
    {
        for (const std::string& function : functions)
        {
            EXPECT_FALSE(m_list[library].contains(function)) << library << " " << function;
        }
    }
    for (const auto& [library, functions] : m_list)
    {
        EXPECT_FALSE(library.starts_with("api-ms-win-")) << library << ": redirected names are newer than Windows 7";
    }
}

} // namespace

} // namespace ResourceTests

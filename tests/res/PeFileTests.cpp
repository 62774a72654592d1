#include "tests/res/PeFile.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ResourceTests
{

namespace
{

// What the reader says of the running test program is compared with what the loader says of it.
std::wstring OwnPath()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

TEST(PeFile, OwnProgram_HeadersAreThoseInMemory)
{
    const CPeFile file = CPeFile::Open(OwnPath());
    const auto* base = reinterpret_cast<const BYTE*>(GetModuleHandleW(nullptr));
    const auto* loaded =
        reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
    EXPECT_EQ(file.FileHeader().NumberOfSections, loaded->FileHeader.NumberOfSections);
    EXPECT_EQ(file.SectionNames().size(), loaded->FileHeader.NumberOfSections);
    EXPECT_EQ(file.OptionalHeader().SizeOfImage, loaded->OptionalHeader.SizeOfImage);
    EXPECT_EQ(file.OptionalHeader().AddressOfEntryPoint, loaded->OptionalHeader.AddressOfEntryPoint);
}

TEST(PeFile, OwnProgram_EveryImportResolves)
{
    const ImportTable imports = CPeFile::Open(OwnPath()).Imports();
    ASSERT_TRUE(imports.contains("kernel32.dll"));
    EXPECT_TRUE(imports.at("kernel32.dll").contains("GetModuleFileNameW"));
    for (const auto& [library, functions] : imports)
    {
        const HMODULE module = GetModuleHandleA(library.c_str());
        ASSERT_NE(module, nullptr) << library;
        for (const std::string& function : functions)
        {
            EXPECT_NE(GetProcAddress(module, function.c_str()), nullptr) << library << " " << function;
        }
    }
}

TEST(PeFile, BrokenFile_Throws)
{
    EXPECT_THROW(CPeFile({}), std::runtime_error);
    EXPECT_THROW(CPeFile(std::vector<std::byte>(4096)), std::runtime_error);
    EXPECT_THROW(static_cast<void>(CPeFile::Open(L"absent.exe")), std::runtime_error);
}

} // namespace

} // namespace ResourceTests

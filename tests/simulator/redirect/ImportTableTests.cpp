#include "simulator/redirect/ImportTable.h"

#include <gtest/gtest.h>

namespace
{
using Simulator::ImportSlots;
using Simulator::WriteImportSlot;

DWORD WINAPI OneMillion()
{
    return 1'000'000;
}

DWORD ProtectionOf(const void* address)
{
    MEMORY_BASIC_INFORMATION information{};
    VirtualQuery(address, &information, sizeof(information));
    return information.Protect;
}

TEST(ImportTable, ImportedFunction_IsFoundWithItsAddress)
{
    const auto slots = ImportSlots(GetModuleHandleW(nullptr), "GetTickCount");
    ASSERT_EQ(slots.size(), 1u);
    EXPECT_EQ(*slots[0], reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetTickCount")));
    GetTickCount();
}

TEST(ImportTable, OtherNames_AreNotFound)
{
    EXPECT_TRUE(ImportSlots(GetModuleHandleW(nullptr), "").empty());
    EXPECT_TRUE(ImportSlots(GetModuleHandleW(nullptr), "GetTickCoun").empty());
    EXPECT_TRUE(ImportSlots(GetModuleHandleW(nullptr), "GetTickCount64x").empty());
}

TEST(ImportTable, ModuleWithoutImports_HasNoSlots)
{
    EXPECT_TRUE(ImportSlots(GetModuleHandleW(L"ntdll.dll"), "GetTickCount").empty());
}

TEST(ImportTable, WrittenSlot_KeepsItsProtection)
{
    void** slot = ImportSlots(GetModuleHandleW(nullptr), "GetTickCount").at(0);
    void* real = *slot;
    const DWORD before = ProtectionOf(slot);
    WriteImportSlot(slot, reinterpret_cast<void*>(&OneMillion));
    EXPECT_EQ(GetTickCount(), 1'000'000u);
    EXPECT_EQ(ProtectionOf(slot), before);
    WriteImportSlot(slot, real);
    EXPECT_EQ(ProtectionOf(slot), before);
}
} // namespace

#include "shared/OwnerTypes.h"
#include "tests/support/MachineRegistry.h"
#include "tests/support/PolicyKey.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <objbase.h>

#include <string>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;

LSTATUS Open(HKEY root, const wchar_t* path, REGSAM access = KEY_READ)
{
    UniqueRegKey key;
    return RegOpenKeyExW(root, path, 0, access, ReceiveInto(key));
}

TEST(MachineRegistry, MachineKey_BeginsEmptyExceptForTheLoggingPolicy)
{
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, L"Software\\Microsoft"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, L"System"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, LoggingKey), ERROR_SUCCESS);
}

TEST(MachineRegistry, MachineKey_LivesUnderTheUserAndIsOfThisProcess)
{
    PolicyKey key(L"Software\\Orvik\\Mine");
    const std::wstring path = L"Software\\OrvikTests\\Machine of process " + std::to_wstring(GetCurrentProcessId()) +
                              L"\\Software\\Orvik\\Mine";
    EXPECT_EQ(Open(HKEY_CURRENT_USER, path.c_str()), ERROR_SUCCESS);
}

TEST(MachineRegistry, BothViews_ReachTheKeysUnderTheirPaths)
{
    PolicyKey key(SuppressKeys[1]);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, SuppressKeys[1], KEY_QUERY_VALUE), ERROR_SUCCESS);
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, SuppressKeys[0], KEY_QUERY_VALUE | KEY_WOW64_64KEY), ERROR_FILE_NOT_FOUND);
}

TEST(MachineRegistry, Classes_ComeFromTheRealRegistry)
{
    EXPECT_EQ(Open(HKEY_CLASSES_ROOT, L"CLSID"), ERROR_SUCCESS);
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CLSID classId{};
    EXPECT_EQ(CLSIDFromProgID(L"Msxml2.DOMDocument.3.0", &classId), S_OK);
    IUnknown* object = nullptr;
    EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, reinterpret_cast<void**>(&object)),
              S_OK);
    if (object != nullptr)
        object->Release();
    CoUninitialize();
}

TEST(PolicyKey, RawData_IsStoredByteByByte)
{
    PolicyKey key(SuppressKeys[0]);
    for (const std::size_t size : {0, 1, 2, 3, 8, 521})
    {
        const std::vector<unsigned char> bytes(size, 't');
        key.Raw(L"Value", REG_SZ, bytes);
        DWORD type = 0;
        DWORD stored = 0;
        EXPECT_EQ(RegQueryValueExW(key.Handle(), L"Value", nullptr, &type, nullptr, &stored), ERROR_SUCCESS);
        EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
        EXPECT_EQ(stored, size);
    }
}

TEST(PolicyKey, Key_BeginsEmptyAndIsGoneAtTheEnd)
{
    {
        PolicyKey key(SuppressKeys[0]);
        key.Text(L"Value", L"true");
        PolicyKey again(SuppressKeys[0]);
        EXPECT_NE(RegQueryValueExW(again.Handle(), L"Value", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    }
    EXPECT_EQ(Open(HKEY_LOCAL_MACHINE, SuppressKeys[0]), ERROR_FILE_NOT_FOUND);
}
} // namespace

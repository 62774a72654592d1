#include "simulator/console/RegistryValue.h"

#include "shared/OwnerTypes.h"
#include "tests/support/PolicyKey.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <ostream>
#include <utility>
#include <vector>

namespace
{
using namespace Simulator;
using Orvik::Shared::ReceiveInto;
using Orvik::Shared::UniqueRegKey;
using Bytes = std::vector<unsigned char>;

constexpr const char* g_key = "SOFTWARE\\Orvik\\Test";

// The machine of a test program holds volatile keys alone: the key is there before the value.
class AppliedRegistryValue : public testing::Test
{
protected:
    TestSupport::PolicyKey m_key{L"SOFTWARE\\Orvik\\Test"};
};

struct Stored
{
    DWORD m_dwType = REG_NONE;
    Bytes m_lstData;

    bool operator==(const Stored&) const = default;
};

void PrintTo(const Stored& stored, std::ostream* out)
{
    *out << "type " << stored.m_dwType << ": " << testing::PrintToString(stored.m_lstData);
}

// What the registry holds once the value is applied.
Stored StoredOf(const RegistryValue& value)
{
    Apply(value);
    Stored stored;
    UniqueRegKey key;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, value.m_strKey.c_str(), 0, KEY_READ, ReceiveInto(key)), ERROR_SUCCESS);
    unsigned char buffer[64];
    DWORD size = sizeof(buffer);
    EXPECT_EQ(RegQueryValueExW(key.get(), value.m_strName.c_str(), nullptr, &stored.m_dwType, buffer, &size),
              ERROR_SUCCESS);
    stored.m_lstData.assign(buffer, buffer + size);
    return stored;
}

// Bytes with zeros behind them in memory, which are none of theirs.
Bytes WithZerosBehind(Bytes bytes)
{
    const std::size_t size = bytes.size();
    bytes.resize(size + 16);
    bytes.resize(size);
    return bytes;
}

TEST_F(AppliedRegistryValue, Bytes_AreStoredAsTheyAreUnderAnyType)
{
    const std::pair<const char*, DWORD> types[] = {{"REG_NONE", REG_NONE},           {"REG_SZ", REG_SZ},
                                                   {"REG_EXPAND_SZ", REG_EXPAND_SZ}, {"REG_BINARY", REG_BINARY},
                                                   {"REG_DWORD", REG_DWORD},         {"REG_QWORD", REG_QWORD},
                                                   {"REG_MULTI_SZ", REG_MULTI_SZ}};
    const Bytes datas[] = {{}, {'t'}, {'t', 0}, {'t', 0, 'r'}, {'t', 0, 'r', 0, 'u', 0, 'e', 0}, {'t', 0, 0, 0}};
    for (const auto& [name, type] : types)
    {
        for (const Bytes& data : datas)
        {
            RegistryValue value =
                ReadRegistryValue({{"key", g_key}, {"name", "Value"}, {"data", data}, {"type", name}}, "place");
            EXPECT_EQ(value.m_lstData, data);
            value.m_lstData = WithZerosBehind(data);
            EXPECT_EQ(StoredOf(value), (Stored{type, data}));
        }
    }
}

TEST_F(AppliedRegistryValue, TextAndNumber_AreStoredWhole)
{
    EXPECT_EQ(StoredOf(ReadRegistryValue({{"key", g_key}, {"name", "Text"}, {"data", "on"}}, "place")),
              (Stored{REG_SZ, {'o', 0, 'n', 0, 0, 0}}));
    EXPECT_EQ(StoredOf(ReadRegistryValue({{"key", g_key}, {"name", "Number"}, {"data", 0x01020304}}, "place")),
              (Stored{REG_DWORD, {4, 3, 2, 1}}));
}
} // namespace

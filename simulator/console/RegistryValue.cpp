#include "simulator/console/RegistryValue.h"

#include "shared/OwnerTypes.h"
#include "simulator/console/ObjectReader.h"
#include "simulator/doubles/JournalText.h"

#include <windows.h>

#include <cstring>

namespace Simulator
{
namespace
{
struct TypeName
{
    const char* m_pName;
    DWORD m_dwType;
};

constexpr TypeName g_typeNames[] = {
    {"REG_NONE", REG_NONE},   {"REG_SZ", REG_SZ},       {"REG_EXPAND_SZ", REG_EXPAND_SZ}, {"REG_BINARY", REG_BINARY},
    {"REG_DWORD", REG_DWORD}, {"REG_QWORD", REG_QWORD}, {"REG_MULTI_SZ", REG_MULTI_SZ},
};

DWORD TypeNumber(const ObjectReader& reader, const std::string& name)
{
    for (const TypeName& entry : g_typeNames)
    {
        if (name == entry.m_pName)
            return entry.m_dwType;
    }
    reader.Complain("\"" + name + "\" is no registry type");
}

std::vector<unsigned char> Bytes(const void* data, std::size_t size)
{
    std::vector<unsigned char> bytes(size);
    std::memcpy(bytes.data(), data, size);
    return bytes;
}

void ReadData(ObjectReader& reader, const nlohmann::json& data, RegistryValue& value)
{
    if (data.is_null())
        value.m_bRemove = true;
    else if (data.is_string())
    {
        const std::wstring text = Wide(data.get<std::string>());
        value.m_dwType = REG_SZ;
        value.m_lstData = Bytes(text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    else if (data.is_number_integer())
    {
        const std::int64_t number = data.get<std::int64_t>();
        value.m_dwType = REG_DWORD;
        value.m_lstData = Bytes(&number, sizeof(DWORD));
    }
    else if (data.is_array())
    {
        value.m_dwType = REG_BINARY;
        value.m_lstData = reader.Get<std::vector<unsigned char>>("data");
    }
    else
        reader.Complain("data is a text, a number, a list of bytes or null");
}

std::vector<RegistryValue> ReadValuesOfKey(const char* key, const nlohmann::json& values, const std::string& place)
{
    if (!values.is_object())
        throw UsageError(place + ": an object is expected");
    std::vector<RegistryValue> list;
    for (const auto& [name, data] : values.items())
        list.push_back(ReadRegistryValue({{"key", key}, {"name", name}, {"data", data}}, place + "/" + name));
    return list;
}

[[noreturn]] void Fail(const char* function, LSTATUS code, const RegistryValue& value)
{
    throw StepFailure(Narrow(value.m_strKey) + ": " + WindowsFailure(function, static_cast<unsigned long>(code)));
}
} // namespace

RegistryValue ReadRegistryValue(const nlohmann::json& object, const std::string& place)
{
    ObjectReader reader(object, place);
    RegistryValue value;
    value.m_strKey = Wide(reader.Get<std::string>("key"));
    value.m_strName = Wide(reader.Get<std::string>("name", ""));
    value.m_bRemoveKey = reader.Get<bool>("remove", false);
    if (const nlohmann::json* data = reader.Find("data"))
        ReadData(reader, *data, value);
    else
        value.m_bKeyOnly = true;
    if (const auto type = reader.Get<std::string>("type", ""); !type.empty())
        value.m_dwType = TypeNumber(reader, type);
    reader.Finish();
    return value;
}

std::vector<RegistryValue> ReadRegistryValues(const nlohmann::json& list, const std::string& place)
{
    if (!list.is_array())
        throw UsageError(place + ": a list is expected");
    std::vector<RegistryValue> values;
    values.reserve(list.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        values.push_back(ReadRegistryValue(list[i], place + "/" + std::to_string(i)));
    return values;
}

std::vector<RegistryValue> ReadPolicyValues(const nlohmann::json& values, const std::string& place)
{
    return ReadValuesOfKey(R"(SOFTWARE\Policies\Orvik\Orvik Notifications)", values, place);
}

std::vector<RegistryValue> ReadLoggingValues(const nlohmann::json& values, const std::string& place)
{
    return ReadValuesOfKey(R"(SOFTWARE\Policies\Orvik\OrvikNotifications Application)", values, place);
}

void Apply(const RegistryValue& value)
{
    if (value.m_bRemoveKey)
    {
        const LSTATUS code = RegDeleteTreeW(HKEY_LOCAL_MACHINE, value.m_strKey.c_str());
        if (code != ERROR_SUCCESS && code != ERROR_FILE_NOT_FOUND)
            Fail("RegDeleteTreeW", code, value);
        return;
    }
    Orvik::Shared::UniqueRegKey key;
    if (const LSTATUS code = RegCreateKeyExW(HKEY_LOCAL_MACHINE, value.m_strKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, Orvik::Shared::ReceiveInto(key), nullptr);
        code != ERROR_SUCCESS)
        Fail("RegCreateKeyExW", code, value);
    if (value.m_bRemove)
        RegDeleteValueW(key.get(), value.m_strName.c_str());
    else if (!value.m_bKeyOnly)
    {
        // The system lengthens a text without terminator when zeros happen to follow it in memory.
        std::vector<unsigned char> guarded = value.m_lstData;
        guarded.insert(guarded.end(), {0xFF, 0xFF});
        if (const LSTATUS code = RegSetValueExW(key.get(), value.m_strName.c_str(), 0, value.m_dwType, guarded.data(),
                                                static_cast<DWORD>(value.m_lstData.size()));
            code != ERROR_SUCCESS)
            Fail("RegSetValueExW", code, value);
    }
}
} // namespace Simulator

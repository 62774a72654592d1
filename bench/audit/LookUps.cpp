#include "bench/audit/LookUps.h"

#include "wmievents/AuditLogKeyMap.h"

#include <stdexcept>

using Notifications::OrvikWmiEvents::AuditLogKeyMap;

namespace
{
constexpr std::size_t g_keyCount = 10'000;

std::unordered_map<std::string, std::string> g_bareMap;
// What is looked up, present and absent in turn.
std::vector<std::string> g_lstWanted;

std::string Key(const char* date, std::size_t number)
{
    return date + std::to_string(number) + "|4";
}

template <class IsPresent>
void LookUpMany(std::size_t times, IsPresent isPresent)
{
    std::size_t present = 0;
    for (std::size_t i = 0; i < times; ++i)
        present += isPresent(g_lstWanted[i % g_lstWanted.size()]) ? 1 : 0;
    if (present * 2 > times + 1)
        throw std::logic_error("an absent key was found");
}
} // namespace

void LookUps::Prepare()
{
    for (std::size_t i = 0; i < g_keyCount; ++i)
    {
        const std::string key = Key("2023/05/01 10:11:", i);
        const std::string value = " TIMESTAMP: " + key;
        g_bareMap.try_emplace(key, value);
        AuditLogKeyMap::Instance().Insert(key, value);
        g_lstWanted.push_back(key);
        g_lstWanted.push_back(Key("2024/05/01 10:11:", i));
    }
}

void LookUps::InKeyMap(std::size_t times)
{
    const AuditLogKeyMap& map = AuditLogKeyMap::Instance();
    LookUpMany(times, [&map](const std::string& key) { return map.Contains(key); });
}

void LookUps::InBareMap(std::size_t times)
{
    LookUpMany(times, [](const std::string& key) { return g_bareMap.contains(key); });
}

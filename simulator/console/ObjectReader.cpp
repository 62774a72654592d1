#include "simulator/console/ObjectReader.h"

namespace Simulator
{
ObjectReader::ObjectReader(const nlohmann::json& object, std::string place)
    : m_object(object), m_strPlace(std::move(place))
{
    if (!m_object.is_object())
        Complain("an object is expected, not " + m_object.dump());
}

const nlohmann::json* ObjectReader::Find(const std::string& key)
{
    m_setKnown.insert(key);
    const auto found = m_object.find(key);
    return found != m_object.end() ? &*found : nullptr;
}

const nlohmann::json& ObjectReader::Required(const std::string& key)
{
    const nlohmann::json* found = Find(key);
    if (found == nullptr)
        Complain("the key \"" + key + "\" is missing");
    return *found;
}

void ObjectReader::Finish() const
{
    for (const auto& [key, value] : m_object.items())
    {
        if (m_setKnown.contains(key))
            continue;
        std::string known;
        for (const std::string& name : m_setKnown)
            known.append(known.empty() ? "" : ", ").append(name);
        Complain("unknown key \"" + key + "\"; known here: " + known);
    }
}

void ObjectReader::Complain(const std::string& sentence) const
{
    throw UsageError((m_strPlace.empty() ? "/" : m_strPlace) + ": " + sentence);
}
} // namespace Simulator

#pragma once

#include "simulator/console/Failure.h"

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>

namespace Simulator
{
// Reads one JSON object of a scenario key by key. Every complaint is a UsageError that names the place as a JSON
// pointer, such as "/steps/3/event: unknown key "idd"".
class ObjectReader
{
public:
    ObjectReader(const nlohmann::json& object, std::string place);

    [[nodiscard]] const std::string& Place() const noexcept { return m_strPlace; }
    [[nodiscard]] std::string PlaceOf(const std::string& key) const { return m_strPlace + "/" + key; }

    // Null when the key is not there.
    [[nodiscard]] const nlohmann::json* Find(const std::string& key);
    [[nodiscard]] const nlohmann::json& Required(const std::string& key);

    template <class Value>
    [[nodiscard]] Value Get(const std::string& key, Value absent)
    {
        const nlohmann::json* found = Find(key);
        return found != nullptr ? Convert<Value>(*found, key) : std::move(absent);
    }

    template <class Value>
    [[nodiscard]] Value Get(const std::string& key)
    {
        return Convert<Value>(Required(key), key);
    }

    // Complains about a key that nobody asked for.
    void Finish() const;

    [[noreturn]] void Complain(const std::string& sentence) const;

private:
    template <class Value>
    [[nodiscard]] Value Convert(const nlohmann::json& value, const std::string& key) const
    {
        try
        {
            return value.get<Value>();
        }
        catch (const nlohmann::json::exception&)
        {
            throw UsageError(PlaceOf(key) + ": " + value.dump() + " is not of the expected type");
        }
    }

    const nlohmann::json& m_object;
    std::string m_strPlace;
    std::set<std::string> m_setKnown;
};
} // namespace Simulator

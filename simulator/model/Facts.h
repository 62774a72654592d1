#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

namespace Simulator
{
// What is true of the simulated machine: one JSON document, addressed by JSON pointers such as
// "/commands/SmartAdapter.Status". One per process; any thread may read and write.
class Facts
{
public:
    static Facts& Instance();

    // The value at the pointer; a JSON null when there is none.
    [[nodiscard]] nlohmann::json Get(const std::string& pointer) const;
    void Set(const std::string& pointer, nlohmann::json value);
    // Overlays a document: objects are merged, other values replaced, null removes (RFC 7396).
    void Merge(const nlohmann::json& document);
    void Clear();

private:
    Facts() = default;

    mutable std::mutex m_lock;
    nlohmann::json m_document = nlohmann::json::object();
};
} // namespace Simulator

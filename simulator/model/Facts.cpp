#include "simulator/model/Facts.h"

namespace Simulator
{
Facts& Facts::Instance()
{
    // Never freed: doubles are called until the process is gone.
    static Facts& facts = *new Facts;
    return facts;
}

nlohmann::json Facts::Get(const std::string& pointer) const
{
    const nlohmann::json::json_pointer place(pointer);
    const std::lock_guard lock(m_lock);
    return m_document.contains(place) ? m_document.at(place) : nlohmann::json();
}

void Facts::Set(const std::string& pointer, nlohmann::json value)
{
    const std::lock_guard lock(m_lock);
    m_document[nlohmann::json::json_pointer(pointer)] = std::move(value);
}

void Facts::Merge(const nlohmann::json& document)
{
    const std::lock_guard lock(m_lock);
    m_document.merge_patch(document);
}

void Facts::Clear()
{
    const std::lock_guard lock(m_lock);
    m_document = nlohmann::json::object();
}
} // namespace Simulator

#pragma once

#include <map>
#include <string>
#include <string_view>

namespace Simulator
{
// Counts the doubles that are alive, by class name, so that a test can see a reference that was never given back.
// Process-wide; any thread.
class LiveObjects
{
public:
    static void Add(std::string_view className);
    static void Remove(std::string_view className);
    [[nodiscard]] static long Count(std::string_view className);
    [[nodiscard]] static long Count();
    // Only classes with a count other than 0.
    [[nodiscard]] static std::map<std::string, long> All();
};

// A member of each double: counts it for as long as it lives.
class LiveObject
{
public:
    explicit LiveObject(std::string_view className) : m_strClassName(className) { LiveObjects::Add(className); }
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;
    ~LiveObject() { LiveObjects::Remove(m_strClassName); }

private:
    std::string m_strClassName;
};
} // namespace Simulator

#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>

namespace Simulator
{
// What the handles of one kind stand for; an object's address is its handle. A call that uses the object while another
// one closes it keeps it. Any thread.
template <class Object>
class HandleTable
{
public:
    HANDLE Add(std::shared_ptr<Object> object)
    {
        const HANDLE handle = object.get();
        const std::lock_guard lock(m_lock);
        m_mapObjects[handle] = std::move(object);
        return handle;
    }

    // Null when no such handle is open.
    [[nodiscard]] std::shared_ptr<Object> Find(HANDLE handle) const
    {
        const std::lock_guard lock(m_lock);
        const auto found = m_mapObjects.find(handle);
        return found != m_mapObjects.end() ? found->second : nullptr;
    }

    // False when no such handle is open.
    bool Remove(HANDLE handle)
    {
        const std::lock_guard lock(m_lock);
        return m_mapObjects.erase(handle) != 0;
    }

private:
    mutable std::mutex m_lock;
    std::map<HANDLE, std::shared_ptr<Object>> m_mapObjects;
};
} // namespace Simulator

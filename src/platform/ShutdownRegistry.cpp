#include "platform/ShutdownRegistry.h"

#include <algorithm>

namespace LibraryBrowser {

void ShutdownRegistry::registerObject(std::unique_ptr<ShutdownObject> object)
{
    if (object)
        m_objects.push_back(std::move(object));
}

void ShutdownRegistry::unregisterObject(const std::string& name)
{
    auto it = std::find_if(m_objects.begin(), m_objects.end(),
                           [&](const auto& o) { return o->name() == name; });
    if (it != m_objects.end())
        m_objects.erase(it);
}

bool ShutdownRegistry::contains(const std::string& name) const
{
    return std::any_of(m_objects.begin(), m_objects.end(),
                       [&](const auto& o) { return o->name() == name; });
}

bool ShutdownRegistry::runExitSequence()
{
    for (const auto& o : m_objects)
        if (!o->isOkToExit())
            return false;
    for (const auto& o : m_objects)
        o->prepareToExit();
    for (const auto& o : m_objects)
        o->preTerminate();
    for (const auto& o : m_objects)
        o->terminate();
    return true;
}

} // namespace LibraryBrowser

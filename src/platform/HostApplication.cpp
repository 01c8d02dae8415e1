#include "platform/HostApplication.h"

#include "platform/HostClass.h"

#include <algorithm>

namespace LibraryBrowser {

void HostApplication::addLocalClass(HostClass* cls)
{
    if (cls && std::find(m_classes.begin(), m_classes.end(), cls) == m_classes.end())
        m_classes.push_back(cls);
}

void HostApplication::removeLocalClass(HostClass* cls)
{
    m_classes.erase(std::remove(m_classes.begin(), m_classes.end(), cls), m_classes.end());
}

HostClass* HostApplication::getLocalClass(const std::string& name) const
{
    for (HostClass* cls : m_classes)
        if (cls->name() == name)
            return cls;
    return nullptr;
}

} // namespace LibraryBrowser

#include "repository/xmlrepository/RecentIcons.h"

#include <algorithm>

namespace LibraryBrowser {

RecentIcons::RecentIcons(qint64 maxBytes) : m_icons(maxBytes) {}

void RecentIcons::keep(const BlockIconPtr& icon)
{
    if (!icon || icon->isEmpty() || m_icons.object(icon.get()))
        return;
    m_icons.insert(icon.get(), new BlockIconPtr(icon), std::max<qint64>(1, icon->svg().size()));
}

} // namespace LibraryBrowser

#pragma once

#include "repository/BlockIcon.h"

#include <QCache>

#include <memory>

namespace LibraryBrowser {

// The icons asked for last, held up to a number of bytes of their documents.
// Product caches hold icons only while something shows them; this keeps a
// page seen a moment ago ready (its icons and so their rendered pixels),
// while a walk over every product holds no more than the budget.
class RecentIcons {
public:
    static constexpr qint64 DefaultBytes = 24 * 1024 * 1024;

    explicit RecentIcons(qint64 maxBytes = DefaultBytes);

    // Holds the icon, or marks it as used now if it is held already. An
    // icon larger than the whole budget is not held.
    void keep(const BlockIconPtr& icon);
    int count() const { return m_icons.count(); }
    qint64 bytes() const { return m_icons.totalCost(); }

private:
    // Every key is alive, since the value holds it: no address is reused.
    QCache<const BlockIcon*, BlockIconPtr> m_icons;
};

using RecentIconsPtr = std::shared_ptr<RecentIcons>;

} // namespace LibraryBrowser

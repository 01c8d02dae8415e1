#include "gui/BlockHistory.h"

#include "gui/BrowserPreferences.h"

namespace LibraryBrowser {

namespace {

// Empty and repeated entries of a hand-edited file are left out.
QStringList cleaned(const QStringList& stored, int limit)
{
    QStringList kept;
    for (const QString& path : stored)
        if (!path.isEmpty() && !kept.contains(path) && (limit < 0 || kept.size() < limit))
            kept.append(path);
    return kept;
}

std::unordered_set<std::string> toSet(const QStringList& paths)
{
    std::unordered_set<std::string> set;
    for (const QString& path : paths)
        set.insert(path.toStdString());
    return set;
}

} // namespace

BlockHistory::BlockHistory(BrowserPreferences& preferences)
    : m_preferences(preferences),
      m_favourites(cleaned(preferences.getStringList(PrefKey::LBFavoriteBlocks), -1)),
      m_recents(cleaned(preferences.getStringList(PrefKey::LBRecentBlocks), RecentLimit))
{
}

bool BlockHistory::isFavourite(const std::string& path) const
{
    return m_favourites.contains(QString::fromStdString(path));
}

bool BlockHistory::setFavourite(const std::string& path, bool favourite)
{
    const QString text = QString::fromStdString(path);
    if (text.isEmpty() || m_favourites.contains(text) == favourite)
        return true;
    if (favourite)
        m_favourites.append(text);
    else
        m_favourites.removeAll(text);
    return save();
}

bool BlockHistory::noteAdded(const std::string& path)
{
    const QString text = QString::fromStdString(path);
    if (text.isEmpty())
        return true;
    m_recents.removeAll(text);
    m_recents.prepend(text);
    while (m_recents.size() > RecentLimit)
        m_recents.removeLast();
    return save();
}

void BlockHistory::keepOnly(const std::function<bool(const std::string& path)>& exists)
{
    const auto prune = [&](QStringList& paths) {
        const qsizetype before = paths.size();
        paths.removeIf([&](const QString& path) { return !exists(path.toStdString()); });
        return paths.size() != before;
    };
    const bool favouritesChanged = prune(m_favourites);
    // A failure is told when the user next marks or adds a block.
    if (prune(m_recents) || favouritesChanged)
        save();
}

QString BlockHistory::saveFailureMessage() const
{
    return QStringLiteral("The preferences file %1 could not be written: favorites and recently used blocks are "
                          "kept until the program ends")
        .arg(m_preferences.fileName());
}

std::unordered_set<std::string> BlockHistory::favouriteSet() const { return toSet(m_favourites); }

std::unordered_set<std::string> BlockHistory::recentSet() const { return toSet(m_recents); }

bool BlockHistory::save()
{
    m_preferences.setStringList(PrefKey::LBFavoriteBlocks, m_favourites);
    m_preferences.setStringList(PrefKey::LBRecentBlocks, m_recents);
    return m_preferences.save();
}

} // namespace LibraryBrowser

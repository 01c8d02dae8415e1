#pragma once

#include <QStringList>

#include <functional>
#include <string>
#include <unordered_set>

namespace LibraryBrowser {

class BrowserPreferences;

// The user's favourite blocks and the blocks added to a model last, by block
// path (`getPath()`), kept in the preferences file at once so that a crash
// loses neither: favourites in the order they were marked, recents newest
// first, at most RecentLimit of them.
class BlockHistory {
public:
    static constexpr int RecentLimit = 20;

    explicit BlockHistory(BrowserPreferences& preferences);

    const QStringList& favourites() const { return m_favourites; }
    const QStringList& recents() const { return m_recents; }
    bool isFavourite(const std::string& path) const;

    // Both write the preferences file; false when it can't be written.
    bool setFavourite(const std::string& path, bool favourite);
    bool noteAdded(const std::string& path);

    // What the user is told when the file could not be written.
    QString saveFailureMessage() const;

    // Forgets the paths that no longer name a block, without a word.
    void keepOnly(const std::function<bool(const std::string& path)>& exists);

    // As the ranking engine takes them.
    std::unordered_set<std::string> favouriteSet() const;
    std::unordered_set<std::string> recentSet() const;

private:
    bool save();

    BrowserPreferences& m_preferences;
    QStringList m_favourites;
    QStringList m_recents;
};

} // namespace LibraryBrowser

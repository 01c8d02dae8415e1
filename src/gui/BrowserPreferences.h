#pragma once

#include "gui/BrowserUtils.h"

#include <QColor>
#include <QRect>
#include <QStringList>
#include <QVariant>

#include <memory>

class QSettings;

namespace LibraryBrowser {

// Every preference of the browser: X(key, type, default). The font size's
// default depends on the toolkit and is filled in at run time.
#define TDLB_PREFERENCE_KEYS(X) \
    X(LBLayout, String, QString("Grid")) \
    X(LBIconSize, String, QString("Compact")) \
    X(LBFontSize, Int, 0) \
    X(LBFontFamily, String, QString("Arial")) \
    X(LBSearch_UseRegExp, Bool, false) \
    X(LBSearch_MatchWholeWord, Bool, false) \
    X(LBSearch_MatchCase, Bool, false) \
    X(LBGeometry4Window, Rect, QRect(32, 64, 600, 640)) \
    X(LBGeometry4Blocks, Rect, QRect(0, 0, 390, 410)) \
    X(LBTreeSelectionTimeout, Int, 111) \
    X(LBTreeDockWidth, Int, 0) \
    X(LBShowBlockDesc, Bool, true) \
    X(LBWindowState, String, QString()) \
    X(LBSearchHistory, StringList, QStringList()) \
    X(LBSearchResults_rememberUserHiddenSections, Bool, true) \
    X(LBSearchResults_isTitleElidedMiddle, Bool, true) \
    X(LBSearchResultsListBox_isShowable, Bool, false) \
    X(LBSearchResultsListBox_isUsedToSelectBlockInLibraryPanel, Bool, true) \
    X(LBSearchResultsListBox_isUsedToSelectBlockInResultsPanel, Bool, false) \
    X(LBSearchResultsListBox_isPrimary, Bool, false) \
    X(LBColorBlocksDescriptionBackground, Color, QColor::fromRgbF(1, 1, 1, 1)) \
    X(LBColorLibraryBlocksBackgroundTop, Color, QColor::fromRgbF(1, 1, 1, 1)) \
    X(LBColorLibraryBlocksBackgroundBot, Color, QColor::fromRgbF(245 / 255.f, 246 / 255.f, 247 / 255.f, 1)) \
    X(LBColorSearchResultsBackgroundTop, Color, QColor::fromRgbF(248 / 255.f, 249 / 255.f, 250 / 255.f, 1)) \
    X(LBColorSearchResultsBackgroundBot, Color, QColor::fromRgbF(245 / 255.f, 246 / 255.f, 247 / 255.f, 1)) \
    X(LBColorSearchResultsDividerBarTop, Color, QColor::fromRgbF(183 / 255.f, 190 / 255.f, 208 / 255.f, 1)) \
    X(LBColorSearchResultsDividerBarBot, Color, QColor::fromRgbF(153 / 255.f, 163 / 255.f, 190 / 255.f, 1)) \
    X(LBColorSearchResultsDividerBarFrame, Color, QColor::fromRgbF(0, 0, 132 / 255.f, 1))

namespace PrefKey {
#define TDLB_PREFERENCE_NAME(key, type, value) constexpr const char* key = #key;
TDLB_PREFERENCE_KEYS(TDLB_PREFERENCE_NAME)
#undef TDLB_PREFERENCE_NAME
} // namespace PrefKey

// The browser's preferences: one INI file in the preferences directory, all
// keys in the group "LibraryBrowser". Reads give the key's default when the
// file has no value or one that can't be read as the key's type. Colours are
// kept as four numbers from 0 to 1 (red, green, blue, alpha), rectangles as
// x, y, width and height.
class BrowserPreferences {
public:
    enum class Type { Bool, Int, String, StringList, Rect, Color };

    static constexpr const char* Group = "LibraryBrowser";
    static constexpr const char* FileName = "LibraryBrowser.ini";

    // Reads the file now; nothing is written before save().
    explicit BrowserPreferences(const QString& fileName);
    // The file in the host's preferences directory.
    static QString defaultFileName();
    ~BrowserPreferences();
    BrowserPreferences(const BrowserPreferences&) = delete;
    BrowserPreferences& operator=(const BrowserPreferences&) = delete;

    static Type typeOf(const char* key);
    static QVariant defaultOf(const char* key);
    // The toolkit's default point size, or 10 when that is 9 or less.
    static int defaultFontSize();

    bool getBool(const char* key) const;
    int getInt(const char* key) const;
    QString getString(const char* key) const;
    QStringList getStringList(const char* key) const;
    QRect getRect(const char* key) const;
    QColor getColor(const char* key) const;

    void setBool(const char* key, bool value);
    void setInt(const char* key, int value);
    void setString(const char* key, const QString& value);
    void setStringList(const char* key, const QStringList& value);
    void setRect(const char* key, const QRect& value);
    void setColor(const char* key, const QColor& value);

    bool contains(const char* key) const;
    // Writes what was set to the file; false when the file can't be written.
    bool save();
    QString fileName() const;

    // The words of the file and the rules by which they read back.
    static LayoutType layoutFromWord(const QString& word);
    static QString wordOf(LayoutType layout);
    static IconSize iconSizeFromWord(const QString& word);
    static QString wordOf(IconSize size);
    // A stored size outside 8 to 24 gives the default.
    static int correctedFontSize(int stored);

private:
    QVariant value(const char* key) const;
    void setValue(const char* key, const QVariant& value);

    std::unique_ptr<QSettings> m_settings;
};

} // namespace LibraryBrowser

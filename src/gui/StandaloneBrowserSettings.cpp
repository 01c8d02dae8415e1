// The preferences a person changes in the dialog, read from the window and
// put back into it while it is open.

#include "gui/StandaloneBrowser.h"

#include "gui/BlocksPage.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/ResultsBlocksPage.h"

#include <QMainWindow>
#include <QScrollArea>

#include <algorithm>

namespace LibraryBrowser {

namespace {

void paintBackground(QWidget* widget, const QColor& color)
{
    if (!widget)
        return;
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Base, color);
    palette.setColor(QPalette::Window, color);
    widget->setPalette(palette);
    widget->update();
}


} // namespace

BrowserSettings StandaloneBrowser::getSettings() const
{
    BrowserSettings settings;
    settings.fontFamily = m_guiFont.family();
    settings.fontSize = m_guiFont.pointSize();
    settings.layout = m_layoutType;
    settings.iconSize = m_iconSize;
    settings.treeSelectionTimeout = m_treeSelectionTimeout;
    settings.colors = m_colors;
    return settings;
}

void StandaloneBrowser::applySettings(const BrowserSettings& settings)
{
    setLayout(settings.layout);
    setIconSize(settings.iconSize);
    m_treeSelectionTimeout = std::clamp(settings.treeSelectionTimeout, 0, BrowserSettings::maxTreeSelectionTimeout);
    for (const auto& [key, color] : settings.colors)
        if (m_colors.count(key) && color.isValid())
            m_colors[key] = color;
    paintBackground(m_descScrollView, getColorPref(PrefKey::LBColorBlocksDescriptionBackground));
    m_libraryPage->setBackgroundColors(getColorPref(PrefKey::LBColorLibraryBlocksBackgroundTop),
                                       getColorPref(PrefKey::LBColorLibraryBlocksBackgroundBot));
    m_resultsPage->setBackgroundColors(getColorPref(PrefKey::LBColorSearchResultsBackgroundTop),
                                       getColorPref(PrefKey::LBColorSearchResultsBackgroundBot));

    const int size = std::clamp(settings.fontSize, BrowserSettings::minFontSize, BrowserSettings::maxFontSize);
    if (!settings.fontFamily.isEmpty())
        m_guiFont.setFamily(settings.fontFamily);
    m_guiFont.setPointSize(size);
    // The font goes to the window and the pages are made anew, which also
    // paints them in their new colours.
    internalApplyFont();
    internalSavePrefs();
}

} // namespace LibraryBrowser

#pragma once

#include "gui/BrowserSettings.h"

#include <QDialog>

#include <map>
#include <string>

class QComboBox;
class QFontComboBox;
class QFormLayout;
class QSpinBox;
class QToolButton;

namespace LibraryBrowser {

class StandaloneBrowser;

// The browser's page of the host's preferences: font, layout, icon size,
// the tree's selection delay and the colours of the pages. Apply and OK put
// the values into the open window at once and save them; Restore Defaults
// only fills the fields.
class PreferencesDialog : public QDialog {
    Q_OBJECT

public:
    explicit PreferencesDialog(StandaloneBrowser& browser);

    // Shows the window's dialog, made anew or brought to the front.
    static PreferencesDialog* open(StandaloneBrowser& browser);

    // What the fields hold now.
    BrowserSettings settings() const;
    void setSettings(const BrowserSettings& settings);
    // A colour chosen for the row of that key; the colour dialog ends here.
    void chooseColor(const std::string& key, const QColor& color);
    void apply();

private:
    struct ColorRow;
    void addColorRow(QFormLayout* form, const ColorRow& row);
    void showColor(const std::string& key);

    StandaloneBrowser& m_browser;
    QFontComboBox* m_fontFamily = nullptr;
    // The family as the window holds it: the box may spell it otherwise, so
    // it counts only once the person picks one.
    QString m_shownFamily;
    bool m_familyPicked = false;
    QSpinBox* m_fontSize = nullptr;
    QComboBox* m_layout = nullptr;
    QComboBox* m_iconSize = nullptr;
    QSpinBox* m_treeTimeout = nullptr;
    std::map<std::string, QColor> m_colors;
    std::map<std::string, QToolButton*> m_colorButtons;
};

} // namespace LibraryBrowser

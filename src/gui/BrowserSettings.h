#pragma once

#include "gui/BrowserUtils.h"

#include <QColor>
#include <QString>

#include <map>
#include <string>

namespace LibraryBrowser {

// The preferences a person changes in the preferences dialog, as the window
// holds them. Colours are by preference key; a key left out keeps its colour.
struct BrowserSettings {
    QString fontFamily;
    int fontSize = 10;
    LayoutType layout = LayoutType::Grid;
    IconSize iconSize = IconSize::Compact;
    int treeSelectionTimeout = 111;
    std::map<std::string, QColor> colors;

    // The bounds the window keeps a value within.
    static constexpr int minFontSize = 8;
    static constexpr int maxFontSize = 24;
    static constexpr int maxTreeSelectionTimeout = 2000;
};

} // namespace LibraryBrowser

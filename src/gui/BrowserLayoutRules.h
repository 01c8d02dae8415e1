#pragma once

#include <QRect>
#include <QSize>

namespace LibraryBrowser::BrowserLayoutRules {

// What the desktop says about the screens when the window is placed.
struct ScreenLayout {
    int screenAtPoint = 0;   // the screen under the window's saved corner
    int primaryScreen = 0;
    int screenCount = 1;
    QRect primaryAvailable;  // available rectangle of the primary screen
    QRect screen1Available;  // available rectangle of screen 1
    QRect desktopAtPoint;    // the desktop's rectangle at the saved corner
};

// The saved window rectangle moved and clipped so that a user finds the
// window on the screens there are now. A rectangle that was small stays
// small; one that had to be clipped keeps at least 390 by 404.
QRect fitBrowserOnScreens(const QRect& saved, const ScreenLayout& screens);

// Whether the description text goes below the icon rather than beside it:
// it goes where it has the larger area.
bool isDescriptionTextBelow(const QSize& panel, int margin, int spacing, int iconWidth, int iconHeight);

} // namespace LibraryBrowser::BrowserLayoutRules

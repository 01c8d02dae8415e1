#include "gui/BrowserLayoutRules.h"

namespace LibraryBrowser::BrowserLayoutRules {

QRect fitBrowserOnScreens(const QRect& saved, const ScreenLayout& screens)
{
    int x = saved.x();
    int y = saved.y();
    int w = saved.width();
    int h = saved.height();
    bool clippedW = false;
    bool clippedH = false;
    const QRect& p = screens.primaryAvailable;

    if (screens.screenAtPoint == screens.primaryScreen || screens.screenCount < 2) {
        if (x < p.x())
            x = p.x() + 32;
        if (x > p.width() - 80)
            x = 32;
        if (w > p.width() - x) {
            w = p.width() - x;
            clippedW = true;
        }
        if (y < p.y())
            y = p.y() + 16;
        if (y > p.height() - 120)
            y = 64;
        if (h > p.height() - y) {
            h = p.height() - y;
            clippedH = true;
        }
    } else if (!(screens.primaryScreen == 0 && screens.screenAtPoint != 1 && screens.screenCount > 2)) {
        const QRect q = screens.screenAtPoint == 1 ? screens.screen1Available : screens.desktopAtPoint;
        if (x < q.x())
            x = q.x();
        if (x > p.width() + q.width() - 80)
            x = p.width() + 32;
        // Twice the second screen's width, as the window always allowed.
        if (w > p.width() + q.width() - x) {
            w = 2 * q.width() - x;
            clippedW = true;
        }
        if (y < q.y())
            y = q.y() + 16;
        if (y > q.height() - 120)
            y = 64;
        if (h > q.height() - y) {
            h = q.height() - y;
            clippedH = true;
        }
    }
    if (w < 390 && clippedW)
        w = 390;
    if (h < 404 && clippedH)
        h = 404;
    return QRect(x, y, w, h);
}

bool isDescriptionTextBelow(const QSize& panel, int margin, int spacing, int iconWidth, int iconHeight)
{
    const long long width = panel.width() - 2 * margin;
    const long long height = panel.height() - 2 * margin;
    const long long beside = (width - spacing - iconWidth) * height;
    const long long below = width * (height - spacing - iconHeight);
    return beside <= below;
}

} // namespace LibraryBrowser::BrowserLayoutRules

#include "gui/IconPixmapCache.h"

#include <QPainter>

#include <cmath>

namespace LibraryBrowser {

IconPixmapCache& IconPixmapCache::instance()
{
    static IconPixmapCache cache;
    return cache;
}

IconPixmapCache::IconPixmapCache(qint64 maxBytes) : m_cache(maxBytes) {}

QPixmap IconPixmapCache::pixmap(const BlockIconPtr& icon, const QSize& logicalSize, qreal devicePixelRatio)
{
    if (!icon || icon->isEmpty() || logicalSize.isEmpty())
        return {};
    const Key key{icon.get(), logicalSize.width(), logicalSize.height(), int(std::lround(devicePixelRatio * 100))};
    if (Entry* entry = m_cache.object(key)) {
        if (!entry->owner.expired() && entry->owner.lock() == icon)
            return entry->pixmap;
        m_cache.remove(key);
    }
    QPixmap pixmap(logicalSize * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const bool drawn = icon->render(painter, QRectF(QPointF(0, 0), QSizeF(logicalSize)));
    painter.end();
    if (!drawn)
        return {};
    const qint64 bytes = qint64(pixmap.width()) * pixmap.height() * 4;
    m_cache.insert(key, new Entry{icon, pixmap}, bytes);
    return pixmap;
}

} // namespace LibraryBrowser

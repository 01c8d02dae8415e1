#pragma once

#include "repository/BlockIcon.h"

#include <QCache>
#include <QPixmap>
#include <QSize>

#include <memory>

namespace LibraryBrowser {

// Rendered icons, shared by every tile of the process: an icon is rendered
// once per size and device pixel ratio, and a repaint or a scroll only copies
// pixels. The cache holds a bounded number of bytes and drops the least used.
class IconPixmapCache {
public:
    static IconPixmapCache& instance();

    explicit IconPixmapCache(qint64 maxBytes = 64 * 1024 * 1024);

    // The icon drawn into a pixmap of that logical size; null for an icon
    // that paints nothing.
    QPixmap pixmap(const BlockIconPtr& icon, const QSize& logicalSize, qreal devicePixelRatio);

    int count() const { return m_cache.count(); }
    void clear() { m_cache.clear(); }

private:
    struct Key {
        const BlockIcon* icon;
        int width;
        int height;
        int ratio;
        bool operator==(const Key& other) const
        {
            return icon == other.icon && width == other.width && height == other.height && ratio == other.ratio;
        }
    };
    struct Entry {
        // A new icon may take the address of a dead one; this tells them apart.
        std::weak_ptr<BlockIcon> owner;
        QPixmap pixmap;
    };
    friend size_t qHash(const Key& key, size_t seed)
    {
        return qHashMulti(seed, quintptr(key.icon), key.width, key.height, key.ratio);
    }

    QCache<Key, Entry> m_cache;
};

} // namespace LibraryBrowser

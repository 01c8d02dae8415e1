#pragma once

#include <QByteArray>
#include <QSizeF>

#include <memory>

class QPainter;
class QRectF;
class QSvgRenderer;

namespace LibraryBrowser {

// The icon of a block: an SVG document, shared by everything that shows it.
// No parsed form is kept for long: a window that has shown every product
// would hold a renderer per block, while what is painted is kept as pixels
// elsewhere. The one parse that finds the natural size serves the first
// render after it. An empty icon is a valid icon that paints nothing.
class BlockIcon {
public:
    BlockIcon();
    explicit BlockIcon(QByteArray svg);
    ~BlockIcon();
    BlockIcon(const BlockIcon&) = delete;
    BlockIcon& operator=(const BlockIcon&) = delete;

    // Whether the bytes are a well-formed XML document with an "svg" root.
    static bool isSvgDocument(const QByteArray& bytes);

    const QByteArray& svg() const { return m_svg; }
    bool isEmpty() const { return m_svg.isEmpty(); }
    // The document's own size (its view box, else its width and height);
    // empty for an empty icon or one that can't be drawn.
    QSizeF naturalSize() const;
    // Draws the document scaled into the target; false if it can't be drawn.
    bool render(QPainter& painter, const QRectF& target) const;

private:
    QByteArray m_svg;
    mutable QSizeF m_naturalSize;
    mutable bool m_sized = false;
    mutable std::unique_ptr<QSvgRenderer> m_sizingRenderer;
};

using BlockIconPtr = std::shared_ptr<BlockIcon>;

} // namespace LibraryBrowser

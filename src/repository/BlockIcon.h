#pragma once

#include <QByteArray>

#include <memory>

class QSvgRenderer;

namespace LibraryBrowser {

// The icon of a block: an SVG document, shared by everything that shows it.
// The renderer is built on first paint only, since most icons that are read
// are never painted. An empty icon is a valid icon that paints nothing.
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
    // Null for an empty icon.
    QSvgRenderer* renderer() const;

private:
    QByteArray m_svg;
    mutable std::unique_ptr<QSvgRenderer> m_renderer;
};

using BlockIconPtr = std::shared_ptr<BlockIcon>;

} // namespace LibraryBrowser

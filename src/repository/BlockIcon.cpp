#include "repository/BlockIcon.h"

#include <QSvgRenderer>
#include <QXmlStreamReader>

namespace LibraryBrowser {

BlockIcon::BlockIcon() = default;

BlockIcon::BlockIcon(QByteArray svg) : m_svg(std::move(svg)) {}

BlockIcon::~BlockIcon() = default;

bool BlockIcon::isSvgDocument(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    bool rootSeen = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && !rootSeen) {
            if (reader.name() != QLatin1String("svg"))
                return false;
            rootSeen = true;
        }
    }
    return rootSeen && !reader.hasError();
}

QSvgRenderer* BlockIcon::renderer() const
{
    if (!m_renderer && !m_svg.isEmpty())
        m_renderer = std::make_unique<QSvgRenderer>(m_svg);
    return m_renderer.get();
}

} // namespace LibraryBrowser

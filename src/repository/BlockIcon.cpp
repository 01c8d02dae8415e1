#include "repository/BlockIcon.h"

#include "platform/PlainXmlCheck.h"

#include <QSvgRenderer>
#include <QXmlStreamReader>

namespace LibraryBrowser {

BlockIcon::BlockIcon() = default;

BlockIcon::BlockIcon(QByteArray svg) : m_svg(std::move(svg)) {}

BlockIcon::~BlockIcon() = default;

bool BlockIcon::isSvgDocument(const QByteArray& bytes)
{
    if (PlainXmlCheck::check(bytes, "svg") == PlainXmlCheck::Verdict::WellFormed)
        return true;
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

QSizeF BlockIcon::naturalSize() const
{
    if (!m_sized && !m_svg.isEmpty()) {
        auto renderer = std::make_unique<QSvgRenderer>(m_svg);
        if (renderer->isValid()) {
            const QRectF box = renderer->viewBoxF();
            m_naturalSize = box.isEmpty() ? QSizeF(renderer->defaultSize()) : box.size();
            m_sizingRenderer = std::move(renderer);
        }
    }
    m_sized = true;
    return m_naturalSize;
}

bool BlockIcon::render(QPainter& painter, const QRectF& target) const
{
    if (m_svg.isEmpty())
        return false;
    const std::unique_ptr<QSvgRenderer> renderer =
        m_sizingRenderer ? std::move(m_sizingRenderer) : std::make_unique<QSvgRenderer>(m_svg);
    if (!renderer->isValid())
        return false;
    renderer->render(&painter, target);
    return true;
}

} // namespace LibraryBrowser

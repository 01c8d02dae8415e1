#include "IconRenderer.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace LibraryBrowser::Host {

namespace {
constexpr double minimumSide = 20;
constexpr double maximumSide = 400;
constexpr int longestLabel = 14;

// Coordinates with at most one decimal, so that output is short and stable.
std::string num(double value)
{
    const double tenths = std::round(value * 10);
    if (!(std::abs(tenths) < 1e15)) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.1f", tenths / 10);
        std::string text = buffer;
        if (text.size() > 2 && text.compare(text.size() - 2, 2, ".0") == 0)
            text.resize(text.size() - 2);
        return text;
    }
    // In whole tenths, as "%.1f" would print them: formatting a double costs
    // more than the rest of an icon, and a generation draws a thousand.
    const long long whole = static_cast<long long>(std::abs(tenths));
    std::string text = whole == 0 ? std::string() : tenths < 0 ? "-" : "";
    text += std::to_string(whole / 10);
    if (whole % 10 != 0)
        text += '.' + std::to_string(whole % 10);
    return text;
}

std::string escapeXml(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        default: out += c;
        }
    }
    return out;
}

// Triangles pointing into the block on the left, out of it on the right.
std::string portMarks(int inputs, int outputs, double width, double height)
{
    std::string d;
    const double mark = std::min(4.0, height / (2.0 * std::max(1, std::max(inputs, outputs)) + 1));
    for (int i = 0; i < inputs; ++i) {
        const double y = height * (i + 1) / (inputs + 1);
        d += "M0 " + num(y - mark) + "L" + num(mark * 1.5) + " " + num(y) + "L0 " + num(y + mark) + "Z";
    }
    for (int i = 0; i < outputs; ++i) {
        const double y = height * (i + 1) / (outputs + 1);
        d += "M" + num(width - mark * 1.5) + " " + num(y - mark) + "L" + num(width) + " " + num(y) + "L"
           + num(width - mark * 1.5) + " " + num(y + mark) + "Z";
    }
    return d.empty() ? std::string() : "<path d=\"" + d + "\" fill=\"#333\"/>";
}

std::string shape(IconShape kind, double w, double h)
{
    const double inset = std::min(w, h) * 0.18;
    const double left = inset, top = inset, right = w - inset, bottom = h - inset;
    const std::string style = " fill=\"none\" stroke=\"#5a6f8c\" stroke-width=\"1\"/>";
    switch (kind) {
    case IconShape::Triangle:
        return "<path d=\"M" + num(left) + " " + num(top) + "L" + num(right) + " " + num(h / 2) + "L" + num(left) + " "
             + num(bottom) + "Z\"" + style;
    case IconShape::Circle:
        return "<circle cx=\"" + num(w / 2) + "\" cy=\"" + num(h / 2) + "\" r=\""
             + num(std::min(right - left, bottom - top) / 2) + "\"" + style;
    case IconShape::Diamond:
        return "<path d=\"M" + num(w / 2) + " " + num(top) + "L" + num(right) + " " + num(h / 2) + "L" + num(w / 2)
             + " " + num(bottom) + "L" + num(left) + " " + num(h / 2) + "Z\"" + style;
    case IconShape::Rectangle:
    case IconShape::Rounded:
        break;
    }
    return std::string();
}
// The label's width in em of a sans-serif face, from rough glyph classes:
// enough to keep formulas such as "x=Ax+Bu" inside the box without
// shrinking plain words more than they need.
double labelWidthEm(const QString& label)
{
    double width = 0;
    for (const QChar c : label) {
        if (QStringLiteral("il.,:;'|!1/()[] ").contains(c))
            width += 0.35;
        else if (c.isUpper() || QStringLiteral("=+<>~^*#%&@mw").contains(c))
            width += 0.8;
        else if (c.category() == QChar::Mark_NonSpacing)
            continue;
        else
            width += 0.6;
    }
    return std::max(width, 0.6);
}
} // namespace

std::string IconRenderer::defaultLabel(const std::string& name)
{
    const QString firstLine = QString::fromStdString(name).section(QLatin1Char('\n'), 0, 0);
    if (firstLine.size() <= longestLabel)
        return firstLine.toStdString();
    return (firstLine.left(longestLabel - 1) + QChar(0x2026)).toStdString();
}

QByteArray IconRenderer::render(const IconSpec& icon, const std::string& name, BlockType type,
                                const BlockPosition& position)
{
    if (!icon.svg.empty())
        return QByteArray::fromStdString(icon.svg);
    const double w = std::clamp(std::fabs(position.right - position.left), minimumSide, maximumSide);
    const double h = std::clamp(std::fabs(position.bottom - position.top), minimumSide, maximumSide);
    const std::string label = icon.label.empty() ? defaultLabel(name) : icon.label;
    const double fontSize = std::max(4.0, std::min(h * 0.3, (w - 10) / labelWidthEm(QString::fromStdString(label))));
    const double radius = icon.shape == IconShape::Rounded ? std::min(w, h) * 0.15 : 0;

    std::string svg;
    svg.reserve(640);
    svg += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + num(w) + "\" height=\"" + num(h)
         + "\" viewBox=\"0 0 " + num(w) + " " + num(h) + "\">";
    svg += "<rect x=\"0.5\" y=\"0.5\" width=\"" + num(w - 1) + "\" height=\"" + num(h - 1) + "\"";
    if (radius > 0)
        svg += " rx=\"" + num(radius) + "\"";
    svg += " fill=\"#fbfbf8\" stroke=\"#333\" stroke-width=\"1\"/>";
    svg += shape(icon.shape, w, h);
    if (type == BlockType::SubSystem)
        svg += "<path d=\"M" + num(w - 9) + " 3h6v4h-6zM" + num(w - 11) + " 9h4v3h-4zM" + num(w - 5)
             + " 9h4v3h-4z\" fill=\"#5a6f8c\"/>";
    if (type == BlockType::LibraryRef)
        svg += "<path d=\"M3 " + num(h - 3) + "l5 -5m-3 0h3v3\" fill=\"none\" stroke=\"#5a6f8c\"/>";
    svg += portMarks(icon.inputs, icon.outputs, w, h);
    if (!label.empty())
        svg += "<text x=\"" + num(w / 2) + "\" y=\"" + num(h / 2 + fontSize * 0.35)
             + "\" font-family=\"sans-serif\" font-size=\"" + num(fontSize)
             + "\" text-anchor=\"middle\" fill=\"#222\">" + escapeXml(label) + "</text>";
    svg += "</svg>\n";
    return QByteArray::fromStdString(svg);
}

} // namespace LibraryBrowser::Host

#include "SyntheticRootGenerator.h"

#include "LibraryDocument.h"
#include "LibraryFileWriter.h"
#include "TdBlocksParser.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

namespace LibraryBrowser::Host {

namespace {
// Share of new blocks that open a subsystem while the depth allows one.
constexpr double subsystemShare = 0.08;
constexpr int columns = 8;

struct Container {
    std::vector<BlockRecord>* blocks;
    int depth;
};

void place(BlockRecord& block, std::size_t index)
{
    const double left = 30 + static_cast<double>(index % columns) * 100;
    const double top = 30 + static_cast<double>(index / columns) * 80;
    block.position = {left, top, left + 50, top + 40};
}

bool writeJson(const QString& path, const QJsonObject& object, QString& error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson()) < 0 || !file.commit()) {
        error = QStringLiteral("cannot write %1").arg(path);
        return false;
    }
    return true;
}
} // namespace

SyntheticRootGenerator::SyntheticRootGenerator(const Settings& settings)
    : m_settings(settings), m_random(settings.seed)
{
}

QString SyntheticRootGenerator::libraryName(int product)
{
    return QStringLiteral("synth_%1").arg(product, 4, 10, QLatin1Char('0'));
}

bool SyntheticRootGenerator::write(const QString& root, QString& error)
{
    const int products = std::max(1, m_settings.products);
    for (int p = 0; p < products; ++p) {
        const QString name = libraryName(p);
        const QString directory = root + QStringLiteral("/toolbox/synthetic/") + name;
        if (!QDir().mkpath(directory)) {
            error = QStringLiteral("cannot make %1").arg(directory);
            return false;
        }
        LibraryDocument document;
        document.name = name.toStdString();
        document.description = "Synthetic library " + std::to_string(p) + " for measurements.";
        // Nodes are added depth first into vectors that may grow, so every
        // container is reached again through its path of indices.
        std::vector<std::vector<std::size_t>> containers{{}};
        const auto blocksAt = [&](const std::vector<std::size_t>& indices) {
            std::vector<BlockRecord>* blocks = &document.blocks;
            for (std::size_t i : indices)
                blocks = &(*blocks)[i].blocks;
            return blocks;
        };
        for (int b = 0; b < m_settings.blocksPerProduct; ++b) {
            // The first blocks make one chain of the full depth, so the depth
            // is reached whatever the random draws are.
            const bool chain = b < m_settings.depth - 1;
            const std::vector<std::size_t> at =
                chain ? containers.back() : containers[below(static_cast<int>(containers.size()))];
            std::vector<BlockRecord>* blocks = blocksAt(at);
            const int depth = static_cast<int>(at.size()) + 1;
            BlockRecord block;
            block.name = "Block " + std::to_string(b);
            block.hasDescription = true;
            block.description = "Block " + std::to_string(b) + " of " + name.toStdString() + ".";
            block.hasIcon = true;
            block.icon.shape = static_cast<IconShape>(below(5));
            block.icon.inputs = below(4);
            block.icon.outputs = below(4);
            if (m_settings.realisticIcons)
                block.icon.svg = realisticIcon(b);
            const double draw = unit();
            if (chain || (depth < m_settings.depth && draw < subsystemShare)) {
                block.type = BlockType::SubSystem;
                block.name = "Subsystem " + std::to_string(b);
            } else if (m_settings.crossReferences && products > 1
                       && draw < subsystemShare + m_settings.referenceShare) {
                block.type = BlockType::LibraryRef;
                block.name = "Reference " + std::to_string(b);
                int target = below(products - 1);
                if (target >= p)
                    ++target;
                block.target.library = libraryName(target).toStdString();
            }
            place(block, blocks->size());
            blocks->push_back(std::move(block));
            if (blocks->back().type == BlockType::SubSystem) {
                std::vector<std::size_t> inner = at;
                inner.push_back(blocks->size() - 1);
                containers.push_back(inner);
            }
        }
        document.filePath = directory + QLatin1Char('/') + name + QStringLiteral(".tdlib.json");
        if (!LibraryFileWriter::save(document, document.filePath, error))
            return false;
        const QJsonObject entry{{"name", QStringLiteral("Synthetic %1").arg(p)},
                                {"library", name},
                                {"type", QStringLiteral("Product")},
                                {"dependencies", QJsonArray{name + QStringLiteral(".tdlib.json")}}};
        const QJsonObject tdblocks{{"format", QLatin1String(TdBlocksParser::format)},
                                   {"version", TdBlocksParser::currentVersion},
                                   {"entries", QJsonArray{entry}}};
        if (!writeJson(directory + QLatin1Char('/') + QLatin1String(TdBlocksParser::fileName), tdblocks, error))
            return false;
    }
    return true;
}

std::string SyntheticRootGenerator::realisticIcon(int block)
{
    // A scope-like picture: frame, grid lines, a trace of many segments,
    // ports and a label; the element count varies from 50 to 200.
    const int elements = 50 + below(151);
    const int gridLines = 6 + below(6);
    const int ports = 2 + below(4);
    const int segments = std::max(10, elements - gridLines - ports - 4);
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 120 80\" width=\"120\" height=\"80\">";
    svg += "<rect x=\"4\" y=\"4\" width=\"112\" height=\"72\" rx=\"6\" fill=\"#f7f8f4\" stroke=\"#333\"/>";
    svg += "<g stroke=\"#c9d3dc\" stroke-width=\"0.5\">";
    for (int i = 0; i < gridLines; ++i) {
        const int x = 10 + i * 100 / gridLines;
        svg += "<line x1=\"" + std::to_string(x) + "\" y1=\"10\" x2=\"" + std::to_string(x) + "\" y2=\"70\"/>";
    }
    svg += "</g><g stroke=\"#1f5fa8\" stroke-width=\"1.2\" fill=\"none\">";
    double y = 40;
    for (int i = 0; i < segments; ++i) {
        const double x0 = 10 + 100.0 * i / segments;
        const double x1 = 10 + 100.0 * (i + 1) / segments;
        const double y1 = std::clamp(y + (unit() - 0.5) * 16, 14.0, 66.0);
        svg += "<line x1=\"" + std::to_string(x0) + "\" y1=\"" + std::to_string(y) + "\" x2=\"" +
               std::to_string(x1) + "\" y2=\"" + std::to_string(y1) + "\"/>";
        y = y1;
    }
    svg += "</g><g fill=\"#333\">";
    for (int i = 0; i < ports; ++i) {
        const int py = 14 + i * 52 / std::max(1, ports - 1);
        const bool input = i % 2 == 0;
        const int px = input ? 0 : 120;
        const int tip = input ? 6 : 114;
        svg += "<path d=\"M" + std::to_string(px) + " " + std::to_string(py - 4) + " L" + std::to_string(tip) + " " +
               std::to_string(py) + " L" + std::to_string(px) + " " + std::to_string(py + 4) + " Z\"/>";
    }
    svg += "</g><text x=\"60\" y=\"76\" font-size=\"8\" text-anchor=\"middle\" fill=\"#555\">B" +
           std::to_string(block) + "</text></svg>";
    return svg;
}

} // namespace LibraryBrowser::Host

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

} // namespace LibraryBrowser::Host

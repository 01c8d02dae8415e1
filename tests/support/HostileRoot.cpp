#include "HostileRoot.h"

#include "Files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace LibraryBrowser::Testing {

namespace {

QJsonObject block(const QString& name)
{
    return QJsonObject{{"name", name}, {"type", "Block"}};
}

QJsonObject reference(const QString& name, const QString& library)
{
    return QJsonObject{{"name", name}, {"type", "LibraryRef"}, {"target", QJsonObject{{"library", library}}}};
}

void writeLibrary(const std::string& directory, const QString& name, const QJsonArray& blocks)
{
    const QJsonObject document{{"format", "tandril-library"}, {"version", 1}, {"name", name}, {"blocks", blocks}};
    writeFile(directory + "/" + name.toStdString() + ".tdlib.json", QJsonDocument(document).toJson());
}

void writeTdBlocks(const std::string& directory, const QJsonArray& entries)
{
    const QJsonObject document{{"format", "tandril-tdblocks"}, {"version", 1}, {"entries", entries}};
    writeFile(directory + "/tdblocks.json", QJsonDocument(document).toJson());
}

QJsonObject product(const QString& name, const QString& library)
{
    return QJsonObject{{"name", name}, {"library", library}, {"type", "Product"}};
}

// Libraries NAME0 .. NAMEK, each with one block "LevelI" and the given
// references to the next.
std::string writeReferenceLevels(const std::string& root, const QString& name, const QString& productName,
                                 const QStringList& references, int levels)
{
    const std::string relative = "toolbox/" + name.toStdString();
    const std::string directory = root + "/" + relative;
    for (int level = 0; level <= levels; ++level) {
        QJsonArray blocks{block(QString("Level%1").arg(level))};
        if (level < levels)
            for (const QString& side : references)
                blocks.append(reference(side, name + QString::number(level + 1)));
        writeLibrary(directory, name + QString::number(level), blocks);
    }
    writeTdBlocks(directory, QJsonArray{product(productName, name + "0")});
    return relative;
}

} // namespace

std::string writeFanOut(const std::string& root, int levels)
{
    return writeReferenceLevels(root, "fan", "Fan Out", {"Left", "Right"}, levels);
}

std::string writeChain(const std::string& root, int levels)
{
    return writeReferenceLevels(root, "chain", "Chain", {"Next"}, levels);
}

std::string writePaletteCycle(const std::string& root, int length)
{
    const std::string relative = "toolbox/cycle";
    const std::string directory = root + "/" + relative;
    writeLibrary(directory, "cyclemember", QJsonArray{block("Orbit")});
    QJsonArray entries{product("Cycle Member", "cyclemember")};
    for (int i = 1; i <= length; ++i) {
        QJsonArray children{QString("Cycle %1").arg(i % length + 1)};
        if (i == 1)
            children.append("Cycle Member");
        // A dependency, so that a first generation finds each palette out
        // of date and generates the next from inside it.
        entries.append(QJsonObject{{"name", QString("Cycle %1").arg(i)},
                                   {"library", QString("cycle%1").arg(i)},
                                   {"type", "Palette"},
                                   {"children", children},
                                   {"dependencies", QJsonArray{"tdblocks.json"}}});
    }
    writeTdBlocks(directory, entries);
    return relative;
}

std::string writeEscapingProduct(const std::string& root, const std::string& repository)
{
    const std::string relative = "toolbox/escape";
    const std::string directory = root + "/" + relative;
    writeLibrary(directory, "escape", QJsonArray{block("Breakout")});
    QJsonObject entry = product("Escape", "escape");
    entry["repository"] = QString::fromStdString(repository);
    writeTdBlocks(directory, QJsonArray{entry});
    return relative;
}

} // namespace LibraryBrowser::Testing

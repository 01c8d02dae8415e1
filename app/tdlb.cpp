// tdlb: the library browser's command-line front end.

#include "frame/ModuleEntry.h"
#include "model/MetaModel.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <map>

using namespace LibraryBrowser;

namespace {

enum ExitCode { Success = 0, Failure = 1, UsageError = 2 };

// A small manifest with one node of every class, to show the format.
ModelPtr sampleManifest()
{
    ModelPtr model = Model::createModel();
    model->beginChangeSet();
    LibraryImpl* library = model->createLibraryImpl();
    library->setUniquePath(StringId("Demo"));
    library->setName("Demo");
    library->setDisplayName("Demo");
    library->setModelFileSpec("demo/demo.tdlib.json");
    library->setChildren({"Gain", "Filters", "Core link"});
    library->setFileDependencies({{"demo/tdblocks.json", "", 0, 0}});
    BlockImpl* gain = model->createBlockImpl();
    gain->setUniquePath(StringId("Demo/Gain"));
    gain->setName("Gain");
    gain->setDescription("Multiplies its input by a constant.\nThe constant may be a vector.");
    gain->setPosition(QRectF(40, 30, 30, 30));
    SubSystemImpl* filters = model->createSubSystemImpl();
    filters->setUniquePath(StringId("Demo/Filters"));
    filters->setName("Filters");
    filters->setIsFlat(true);
    LibraryRefImpl* link = model->createLibraryRefImpl();
    link->setUniquePath(StringId("Demo/Core link"));
    link->setLibraryRefName("Core");
    PaletteImpl* palette = model->createPaletteImpl();
    palette->setUniquePath(StringId("Favourites"));
    palette->setProduct(library);
    palette->setDependencies([&] {
        LibraryImplList list;
        list.append(library);
        return list;
    }());
    model->commitChangeSet();
    return model;
}

int writeManifest(const QString& path)
{
    ErrorHolder errors;
    if (!sampleManifest()->save(path.toStdString(), errors, Model::Indented)) {
        std::fprintf(stderr, "tdlb: %s\n", errors.message().c_str());
        return Failure;
    }
    std::printf("Wrote a sample manifest to %s\n", qPrintable(path));
    return Success;
}

int readManifest(const QString& path)
{
    ErrorHolder errors;
    ModelPtr model = Model::createModel();
    if (!model->load(path.toStdString(), errors)) {
        for (const std::string& e : errors.errors())
            std::fprintf(stderr, "tdlb: %s\n", e.c_str());
        return Failure;
    }
    std::map<std::string, int> counts;
    for (const TandrilObjectImpl* node : model->getNodes())
        ++counts[node->getTypeName().str()];
    std::printf("%s: %d nodes\n", qPrintable(path), model->nodeCount());
    for (const auto& meta : Model::staticGetType().metaNodes())
        if (counts.count(meta->typeName().str()))
            std::printf("  %-18s %d\n", meta->typeName().c_str(), counts[meta->typeName().str()]);
    return Success;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tdlb"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(libtd_lib_browse_version));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Tandril library browser: inspect and write repository manifests.\n"
        "Without options, prints the module's version and build date."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption writeOption(QStringLiteral("write-manifest"),
                                         QStringLiteral("Write a sample manifest to <file>."),
                                         QStringLiteral("file"));
    const QCommandLineOption readOption(QStringLiteral("read-manifest"),
                                        QStringLiteral("Load the manifest <file> and summarise its nodes."),
                                        QStringLiteral("file"));
    parser.addOption(writeOption);
    parser.addOption(readOption);
    if (!parser.parse(QCoreApplication::arguments())) {
        std::fprintf(stderr, "tdlb: %s\nTry 'tdlb --help'.\n", qPrintable(parser.errorText()));
        return UsageError;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(Success);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "tdlb: unexpected argument '%s'\nTry 'tdlb --help'.\n",
                     qPrintable(parser.positionalArguments().first()));
        return UsageError;
    }

    NRInitialize_td_lib_browse();
    std::printf("libtd_lib_browse %s, built %s\n", libtd_lib_browse_version, libtd_lib_browse_build_date);
    int result = Success;
    if (parser.isSet(writeOption))
        result = writeManifest(parser.value(writeOption));
    if (result == Success && parser.isSet(readOption))
        result = readManifest(parser.value(readOption));
    NRTerminate_td_lib_browse();
    return result;
}

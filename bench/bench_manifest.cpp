// Saving and loading manifests: throughput in nodes and bytes per second.

#include "model/Model.h"
#include "platform/ErrorHolder.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace LibraryBrowser;

namespace {

// Blocks as generation makes them: paths, names, a paragraph of description,
// a position and an icon entry each.
ModelPtr manifestOf(int nodes)
{
    ModelPtr model = Model::createModel();
    LibraryImpl* library = model->createLibraryImpl();
    library->setUniquePath(StringId("Bench"));
    library->setName("Bench");
    StringVector children;
    for (int i = 1; i < nodes; ++i) {
        const std::string name = "Block " + std::to_string(i);
        BlockImpl* block = (i % 10 == 0) ? model->createSubSystemImpl() : model->createBlockImpl();
        block->setUniquePath(StringId("Bench/" + name));
        block->setName(name);
        block->setDisplayName(name);
        block->setPath("bench/" + name);
        block->setDisplayPath("bench/" + name);
        block->setIconFileSpec("icons/Bench/Block_20" + std::to_string(i) + ".svg");
        block->setDescription("Scales its input by a gain that can be a scalar, a vector or a matrix, "
                              "and saturates the result between two limits. Block number "
                              + std::to_string(i) + ".");
        block->setPosition(QRectF(i % 40 * 60.0, i / 40 * 50.0, 30, 30));
        children.push_back(name);
    }
    library->setChildren(children);
    return model;
}

// A store's top-level manifest: one library node per product with the
// properties generation records for it (archives, model file, checksum,
// dates, one file dependency), about 800 bytes of XML each.
ModelPtr topLevelManifestOf(int products)
{
    ModelPtr model = Model::createModel();
    for (int i = 0; i < products; ++i) {
        char digits[12];
        std::snprintf(digits, sizeof digits, "%04d", i);
        const std::string name = std::string("synth_") + digits;
        const std::string dir = std::string("synth__") + digits;
        const std::string file = "toolbox/synthetic/" + name + "/" + name + ".tdlib.json";
        const std::string checkSum = "17623847226200190234239963229107542" + std::to_string(12104109 + i);
        LibraryImpl* library = model->createLibraryImpl();
        library->setUniquePath(StringId(name));
        library->setPath(name);
        library->setName(name);
        library->setDisplayName("Synthetic " + std::to_string(i));
        library->setDisplayPath("Synthetic " + std::to_string(i));
        library->setReposDirectorySpec(name);
        library->setReposManifestsArchiveSpec(name + "/lb_" + dir + "_manifests_repos.rps");
        library->setReposIconsArchiveSpec(name + "/lb_" + dir + "_icons_repos.rps");
        library->setProductName(name);
        library->setIsFlat(false);
        library->setIsEmpty(false);
        library->setDirectorySpec(dir);
        library->setManifestFileSpec(dir + "/lb" + dir + "manifest.xml");
        library->setIsTopLevel(true);
        library->setModelFileSpec(file);
        library->setModelFileCheckSum(checkSum);
        library->setModelFileSize(600000 + i);
        library->setModelFileDate(1795516012);
        library->setLastModified("Tue Nov 24 10:27:15 2026");
        library->setFileDependencies({{file, checkSum, 1795516012, std::uint64_t(600000 + i)}});
    }
    return model;
}

void BM_SaveManifest(benchmark::State& state)
{
    ModelPtr model = manifestOf(int(state.range(0)));
    QTemporaryDir dir;
    const std::string path = dir.filePath(QStringLiteral("manifest.xml")).toStdString();
    std::int64_t bytes = 0;
    for (auto _ : state) {
        ErrorHolder errors;
        model->save(path, errors);
        bytes += QFileInfo(QString::fromStdString(path)).size();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(bytes);
}

// One load per iteration; tearing the model down is not part of loading it.
template <class Load>
void timeLoads(benchmark::State& state, std::int64_t bytesPerLoad, Load&& load)
{
    ErrorHolder errors;
    for (auto _ : state) {
        ModelPtr model = Model::createModel();
        if (!load(*model, errors))
            state.SkipWithError(errors.message().c_str());
        benchmark::DoNotOptimize(model->nodeCount());
        state.PauseTiming();
        model.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * bytesPerLoad);
}

void BM_LoadManifest(benchmark::State& state)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath(QStringLiteral("manifest.xml")).toStdString();
    ErrorHolder errors;
    manifestOf(int(state.range(0)))->save(path, errors);
    timeLoads(state, QFileInfo(QString::fromStdString(path)).size(),
              [&](Model& model, ErrorHolder& loadErrors) { return model.load(path, loadErrors); });
}

// As a generation reads and writes a store's top-level manifest: from and to
// memory, the archive and the file being the caller's affair.
void BM_SaveTopLevelManifest(benchmark::State& state)
{
    ModelPtr model = topLevelManifestOf(int(state.range(0)));
    std::int64_t bytes = 0;
    for (auto _ : state) {
        const QByteArray saved = model->saveToBytes();
        bytes += saved.size();
        benchmark::DoNotOptimize(saved.constData());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(bytes);
}

void BM_LoadTopLevelManifest(benchmark::State& state)
{
    const QByteArray bytes = topLevelManifestOf(int(state.range(0)))->saveToBytes();
    timeLoads(state, bytes.size(),
              [&](Model& model, ErrorHolder& errors) { return model.loadFromBytes(bytes, errors); });
}

} // namespace

BENCHMARK(BM_SaveTopLevelManifest)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadTopLevelManifest)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveManifest)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadManifest)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();

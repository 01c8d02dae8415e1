// Saving and loading manifests: throughput in nodes and bytes per second.

#include "model/Model.h"
#include "platform/ErrorHolder.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

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

void BM_LoadManifest(benchmark::State& state)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath(QStringLiteral("manifest.xml")).toStdString();
    ErrorHolder errors;
    manifestOf(int(state.range(0)))->save(path, errors);
    const std::int64_t size = QFileInfo(QString::fromStdString(path)).size();
    for (auto _ : state) {
        ModelPtr model = Model::createModel();
        if (!model->load(path, errors))
            state.SkipWithError(errors.message().c_str());
        benchmark::DoNotOptimize(model->nodeCount());
        // Tearing the model down is not part of loading it.
        state.PauseTiming();
        model.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * size);
}

} // namespace

BENCHMARK(BM_SaveManifest)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadManifest)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();

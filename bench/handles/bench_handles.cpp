// The hot path of the browser: walking a store through the read caches, and
// handles used as hash keys. The store is made by hand below the system's
// temporary directory: one product of 100 subsystems, each of 10 subsystems,
// each of 100 blocks (100,000 blocks, 101,100 objects, 1,101 manifests).

#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/HostInterpreter.h"
#include "platform/Platform.h"
#include "platform/ZipArchive.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace LibraryBrowser;

namespace {

const int TopSubsystems = 100;
const int InnerSubsystems = 10;
const int BlocksPerSubsystem = 100;
// The walk from the top returns the product too.
const int ObjectCount = 1 + TopSubsystems * (1 + InnerSubsystems * (1 + BlocksPerSubsystem));

// Removes the caches' private directories as the host would.
class RemovingInterpreter : public HostInterpreter {
public:
    CallResult callWithTrap(const std::string&, int, const std::vector<HostValue>& inputs) override
    {
        CallResult result;
        result.ok = true;
        const bool removed = QDir(QString::fromStdString(inputs.at(1).toString())).removeRecursively();
        result.outputs = {HostValue::logicalScalar(removed), HostValue::string(""), HostValue::string("")};
        return result;
    }
};

SubSystemImpl* subsystem(Model& model, const std::string& name, const std::string& manifest)
{
    SubSystemImpl* node = model.createSubSystemImpl();
    node->setName(name);
    node->setPath(name);
    node->setDisplayName(name);
    node->setProductName("Big");
    node->setIsEmpty(false);
    node->setIsFlat(false);
    node->setManifestFileSpec(manifest);
    return node;
}

void fail(const std::string& message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

class Store {
public:
    Store()
    {
        if (!m_dir.isValid())
            fail("no temporary directory");
        auto top = Model::createModel();
        LibraryImpl* big = top->createLibraryImpl();
        big->setUniquePath(StringId("Big"));
        big->setName("Big");
        big->setPath("Big");
        big->setDisplayName("Big");
        big->setDisplayPath("Big");
        big->setProductName("Big");
        big->setIsEmpty(false);
        big->setIsTopLevel(true);
        big->setManifestFileSpec("Big/lbBigmanifest.xml");
        big->setReposManifestsArchiveSpec("toolbox/Big/lb_Big_manifests_repos.rps");
        big->setReposIconsArchiveSpec("toolbox/Big/lb_Big_icons_repos.rps");
        const std::string blocks = directory() + "/toolbox/tandril/blocks";
        QDir().mkpath(QString::fromStdString(blocks));
        ErrorHolder errors;
        if (!top->save(blocks + "/lbtoplevelmanifest.xml", errors))
            fail("cannot save the top level");

        QDir().mkpath(QString::fromStdString(directory() + "/toolbox/Big"));
        ZipArchive archive;
        if (!archive.open(directory() + "/" + big->getReposManifestsArchiveSpec(), ZipArchive::CreateNew))
            fail("cannot make the archive");
        auto root = Model::createModel();
        for (int i = 0; i < TopSubsystems; ++i) {
            const std::string name = "S" + std::to_string(i);
            const std::string entry = "Big/" + name + "/manifest.xml";
            subsystem(*root, name, entry);
            auto middle = Model::createModel();
            for (int j = 0; j < InnerSubsystems; ++j) {
                const std::string inner = name + "_" + std::to_string(j);
                const std::string innerEntry = "Big/" + name + "/" + inner + "/manifest.xml";
                subsystem(*middle, inner, innerEntry);
                auto leaf = Model::createModel();
                for (int k = 0; k < BlocksPerSubsystem; ++k) {
                    BlockImpl* block = leaf->createBlockImpl();
                    block->setName("B" + std::to_string(k));
                    block->setPath(inner + "/B" + std::to_string(k));
                    block->setDisplayName(block->getName());
                    block->setProductName("Big");
                    block->setDescription("A block of the benchmark store");
                }
                archive.add(innerEntry, leaf->saveToBytes());
            }
            archive.add(entry, middle->saveToBytes());
        }
        archive.add("Big/lbBigmanifest.xml", root->saveToBytes());
        if (!archive.close())
            fail("cannot write the archive");
    }

    std::string directory() const { return m_dir.path().toStdString() + "/store"; }

private:
    QTemporaryDir m_dir;
};

Store& store()
{
    static Store* const made = [] {
        static RemovingInterpreter interpreter;
        Platform::setInterpreter(&interpreter);
        return new Store();
    }();
    return *made;
}

int walk(RepositoryReader& reader)
{
    int count = 0;
    for (TandrilObjectIterator it = reader.getDepthFirstIterator(); it.isValidIterator(); it.next())
        ++count;
    return count;
}

void checkCount(benchmark::State& state, int count)
{
    if (count != ObjectCount)
        state.SkipWithError(("the walk gave " + std::to_string(count) + " objects").c_str());
}

void BM_DepthFirstWalkCold(benchmark::State& state)
{
    const std::string directory = store().directory();
    const std::uint64_t copies = XMLRepositoryArchiveCache::copyCount();
    for (auto _ : state) {
        XMLRepositoryReader reader(directory);
        checkCount(state, walk(reader));
    }
    state.counters["objects"] = ObjectCount;
    state.counters["archiveCopiesPerWalk"] =
        double(XMLRepositoryArchiveCache::copyCount() - copies) / double(state.iterations());
}
BENCHMARK(BM_DepthFirstWalkCold)->Unit(benchmark::kMillisecond)->Iterations(5)->Repetitions(3)->ReportAggregatesOnly(true);

void BM_DepthFirstWalkWarm(benchmark::State& state)
{
    XMLRepositoryReader reader(store().directory());
    walk(reader);
    const std::uint64_t reads = XMLRepositoryArchiveCache::readCount();
    for (auto _ : state)
        checkCount(state, walk(reader));
    state.counters["objects"] = ObjectCount;
    state.counters["archiveReads"] = double(XMLRepositoryArchiveCache::readCount() - reads);
}
BENCHMARK(BM_DepthFirstWalkWarm)->Unit(benchmark::kMillisecond)->Repetitions(3)->ReportAggregatesOnly(true);

void BM_HandleCopy(benchmark::State& state)
{
    XMLRepositoryReader reader(store().directory());
    const TandrilObject handle = reader.getTandrilObject("Big/S1/S1_2/B3");
    if (!handle.isValid())
        state.SkipWithError("no handle");
    for (auto _ : state) {
        TandrilObject copy(handle);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_HandleCopy)->Repetitions(3)->ReportAggregatesOnly(true);

void BM_HandleHash(benchmark::State& state)
{
    XMLRepositoryReader reader(store().directory());
    const TandrilObject handle = reader.getTandrilObject("Big/S1/S1_2/B3");
    for (auto _ : state) {
        std::uint32_t hash = handle.hash();
        benchmark::DoNotOptimize(hash);
    }
}
BENCHMARK(BM_HandleHash)->Repetitions(3)->ReportAggregatesOnly(true);

} // namespace

BENCHMARK_MAIN();

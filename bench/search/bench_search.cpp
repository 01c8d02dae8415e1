// A search in a process that has searched before: every manifest is already
// read, so what is left is the walk through the caches and the matching.
// Beside it, the floor: the same compiled expression run over the shown
// names alone, gathered once into a plain list.
//
//   bench_search [--root DIR --prefdir DIR] [--pattern TEXT] [benchmark flags]
//
// Without --root, a synthetic root of 100 products of 100 blocks is made in
// a temporary directory and its store generated first.

#include "EmbeddedHost.h"
#include "SyntheticRootGenerator.h"
#include "frame/ModuleEntry.h"
#include "repository/Repository.h"
#include "repository/search/SearchPattern.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace LibraryBrowser;

namespace {

std::string searchPattern = "Block 12";
// Owned by main, which ends the module in order before it returns.
Repository* repository = nullptr;
QStringList shownNames;

int countHits(TandrilObjectIterator hits)
{
    int count = 0;
    for (; hits.isValidIterator(); hits.next())
        ++count;
    return count;
}

void WarmSearch(benchmark::State& state)
{
    int hits = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(hits = countHits(repository->findBlocks(searchPattern)));
    state.counters["hits"] = hits;
    state.counters["objects"] = shownNames.size();
}
BENCHMARK(WarmSearch)->Unit(benchmark::kMillisecond);

void BareExpressionLoop(benchmark::State& state)
{
    const QRegExp expression =
        SearchPattern(searchPattern, SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff)
            .regExp();
    int hits = 0;
    for (auto _ : state) {
        hits = 0;
        for (const QString& name : shownNames)
            hits += expression.indexIn(name) >= 0 ? 1 : 0;
        benchmark::DoNotOptimize(hits);
    }
    state.counters["hits"] = hits;
    state.counters["objects"] = shownNames.size();
}
BENCHMARK(BareExpressionLoop)->Unit(benchmark::kMillisecond);

[[noreturn]] void usage(const char* problem)
{
    std::fprintf(stderr, "bench_search: %s\nusage: bench_search [--root DIR --prefdir DIR] [--pattern TEXT]\n", problem);
    std::exit(2);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    QCoreApplication application(argc, argv);
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    QString root;
    QString preferences;
    const QStringList arguments = application.arguments().mid(1);
    for (int i = 0; i < arguments.size(); i += 2) {
        if (i + 1 >= arguments.size())
            usage("an option without its value");
        if (arguments[i] == "--root")
            root = arguments[i + 1];
        else if (arguments[i] == "--prefdir")
            preferences = arguments[i + 1];
        else if (arguments[i] == "--pattern")
            searchPattern = arguments[i + 1].toStdString();
        else
            usage("unknown option");
    }
    if (root.isEmpty() != preferences.isEmpty())
        usage("--root and --prefdir go together");

    QTemporaryDir scratch;
    const bool synthetic = root.isEmpty();
    if (synthetic) {
        root = scratch.filePath("root");
        preferences = scratch.filePath("prefs");
        Host::SyntheticRootGenerator::Settings settings;
        settings.products = 100;
        settings.blocksPerProduct = 100;
        settings.crossReferences = false;
        QString error;
        if (!Host::SyntheticRootGenerator(settings).write(root, error))
            usage(qPrintable(error));
    }
    options.root = root;
    options.preferencesDirectory = preferences;
    Host::EmbeddedHost host(options);
    host.install();
    NRInitialize_td_lib_browse();
    RepositoryPtr opened = Repository::open();
    repository = opened.get();
    if (synthetic)
        repository->generateRepository(GenerationMode::Minimal);

    // The first walk reads every manifest; the benchmarks start warm.
    for (TandrilObjectIterator it = repository->getDepthFirstIterator(); it.isValidIterator(); it.next())
        shownNames.append(QString::fromStdString(it.current().getDisplayName()));
    const bool found = countHits(repository->findBlocks(searchPattern)) > 0;
    if (found)
        benchmark::RunSpecifiedBenchmarks();
    else
        std::fprintf(stderr, "bench_search: '%s' matches nothing in this repository\n", searchPattern.c_str());
    benchmark::Shutdown();
    repository = nullptr;
    opened.reset();
    NRTerminate_td_lib_browse();
    return found ? 0 : 1;
}

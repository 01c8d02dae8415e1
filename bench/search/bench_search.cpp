// A search in a process that has searched before: every manifest is already
// read, so what is left is the walk through the caches and the matching.
// Beside it, the floor: the same compiled expression run over the shown
// names alone, gathered once into a plain list.
//
// Then the ranked search of a typing user: each keystroke of a query asks
// the ranking engine again, timed one by one for the median and the 99th
// percentile; its floor, in the same run, is a bare loop that compares the
// lower-cased names alone with std::string::find. The counters tell the
// memory the ranking index keeps. The first ranked query of a process that
// has read no manifest is measured on the command line (BENCHMARKS.md).
//
//   bench_search [--root DIR --prefdir DIR] [--products N] [--pattern TEXT] [--query TEXT] [benchmark flags]
//
// Without --root, a synthetic root of N products (default 100) of 100 blocks
// is made in a temporary directory and its store generated first.

#include "EmbeddedHost.h"
#include "SyntheticRootGenerator.h"
#include "frame/ModuleEntry.h"
#include "repository/Repository.h"
#include "repository/search/BlockRanker.h"
#include "repository/search/RankingText.h"
#include "repository/search/SearchPattern.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <unistd.h>

using namespace LibraryBrowser;

namespace {

std::string searchPattern = "Block 12";
// Owned by main, which ends the module in order before it returns.
Repository* repository = nullptr;
QStringList shownNames;
std::string typed = "block 12 synthetic";
std::unique_ptr<BlockRanker> ranker;
std::vector<std::string> loweredNames;
double indexResidentMB = 0;

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

// Every prefix of the typed query that ends in a letter: one per keystroke.
std::vector<std::string> keystrokes()
{
    std::vector<std::string> texts;
    for (std::size_t i = 1; i <= typed.size(); ++i)
        if (typed[i - 1] != ' ')
            texts.push_back(typed.substr(0, i));
    return texts;
}

double residentMB()
{
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

// Times each iteration itself, so that the median and the 99th percentile
// of single keystrokes can be told, not only their mean.
template <class Work>
void perKeystroke(benchmark::State& state, Work work)
{
    const std::vector<std::string> texts = keystrokes();
    std::vector<double> milliseconds;
    std::size_t next = 0;
    std::size_t found = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        found = work(texts[next]);
        milliseconds.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        benchmark::DoNotOptimize(found);
        next = (next + 1) % texts.size();
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    state.counters["p50_ms"] = milliseconds[milliseconds.size() / 2];
    state.counters["p99_ms"] = milliseconds[std::min(milliseconds.size() - 1, milliseconds.size() * 99 / 100)];
    state.counters["blocks"] = double(ranker->index().size());
}

void KeystrokeRanked(benchmark::State& state)
{
    perKeystroke(state, [](const std::string& text) { return ranker->rank({text, {}, {}, 50}).total; });
    state.counters["indexMB"] = double(ranker->index().memoryBytes()) / (1024.0 * 1024.0);
    state.counters["indexResidentMB"] = indexResidentMB;
}
BENCHMARK(KeystrokeRanked)->Unit(benchmark::kMillisecond)->Iterations(400);

void KeystrokeBareFindFloor(benchmark::State& state)
{
    perKeystroke(state, [](const std::string& text) {
        const std::string needle = RankingText::lowered(text);
        std::size_t hits = 0;
        for (const std::string& name : loweredNames)
            hits += name.find(needle) != std::string::npos ? 1 : 0;
        return hits;
    });
}
BENCHMARK(KeystrokeBareFindFloor)->Unit(benchmark::kMillisecond)->Iterations(400);

[[noreturn]] void usage(const char* problem)
{
    std::fprintf(stderr, "bench_search: %s\nusage: bench_search [--root DIR --prefdir DIR] [--products N] [--pattern TEXT] [--query TEXT]\n", problem);
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
    int products = 100;
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
        else if (arguments[i] == "--products")
            products = arguments[i + 1].toInt();
        else if (arguments[i] == "--query")
            typed = arguments[i + 1].toStdString();
        else
            usage("unknown option");
    }
    if (root.isEmpty() != preferences.isEmpty())
        usage("--root and --prefdir go together");
    if (products < 1)
        usage("--products takes a number of 1 or more");
    if (BlockRanker::queryWords(typed).empty())
        usage("the query has no words");

    QTemporaryDir scratch;
    const bool synthetic = root.isEmpty();
    if (synthetic) {
        root = scratch.filePath("root");
        preferences = scratch.filePath("prefs");
        Host::SyntheticRootGenerator::Settings settings;
        settings.products = products;
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
    for (TandrilObjectIterator it = repository->getDepthFirstIterator(); it.isValidIterator(); it.next()) {
        const std::string name = it.current().getDisplayName();
        shownNames.append(QString::fromStdString(name));
        if (it.current().isBlock())
            loweredNames.push_back(RankingText::lowered(name));
    }
    const double before = residentMB();
    ranker = std::make_unique<BlockRanker>(*repository);
    indexResidentMB = residentMB() - before;
    const bool found = countHits(repository->findBlocks(searchPattern)) > 0 && ranker->rank({typed, {}, {}, 1}).total > 0;
    if (found)
        benchmark::RunSpecifiedBenchmarks();
    else
        std::fprintf(stderr, "bench_search: '%s' or '%s' matches nothing in this repository\n", searchPattern.c_str(),
                     typed.c_str());
    benchmark::Shutdown();
    ranker.reset();
    repository = nullptr;
    opened.reset();
    NRTerminate_td_lib_browse();
    return found ? 0 : 1;
}

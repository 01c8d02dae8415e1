// The C++ side of the Python walk benchmark: a depth-first walk over every
// object of a repository whose manifests are already read, taking each
// object's Name and Path as strings, as the Python loop of bench_walk.py does.
//
//   bench_walk --root DIR --prefdir DIR [benchmark flags]
//
// The store must be generated already (bench_walk.py does that).

#include "EmbeddedHost.h"
#include "frame/ModuleEntry.h"
#include "repository/Repository.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QProcessEnvironment>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace LibraryBrowser;

namespace {

// Owned by main, which ends the module in order before it returns.
Repository* repository = nullptr;

// The objects walked and the characters read, so that nothing is left out.
std::pair<int, std::size_t> walkNamesAndPaths()
{
    int objects = 0;
    std::size_t characters = 0;
    for (TandrilObjectIterator it = repository->getDepthFirstIterator(); it.isValidIterator(); it.next()) {
        const TandrilObject object = it.current();
        const std::string name = object.getName();
        const std::string path = object.getPath();
        characters += name.size() + path.size();
        ++objects;
    }
    return {objects, characters};
}

void WarmWalkNameAndPath(benchmark::State& state)
{
    std::pair<int, std::size_t> result;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = walkNamesAndPaths());
    state.counters["objects"] = result.first;
    state.counters["characters"] = double(result.second);
}
BENCHMARK(WarmWalkNameAndPath)->Unit(benchmark::kMillisecond);

[[noreturn]] void usage(const char* problem)
{
    std::fprintf(stderr, "bench_walk: %s\nusage: bench_walk --root DIR --prefdir DIR [benchmark flags]\n", problem);
    std::exit(2);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    QCoreApplication application(argc, argv);
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    const QStringList arguments = application.arguments().mid(1);
    for (int i = 0; i < arguments.size(); i += 2) {
        if (i + 1 >= arguments.size())
            usage("an option without its value");
        if (arguments[i] == "--root")
            options.root = arguments[i + 1];
        else if (arguments[i] == "--prefdir")
            options.preferencesDirectory = arguments[i + 1];
        else
            usage("unknown option");
    }
    if (!arguments.contains("--root") || !arguments.contains("--prefdir"))
        usage("--root and --prefdir are needed");
    Host::EmbeddedHost host(options);
    host.install();
    NRInitialize_td_lib_browse();
    RepositoryPtr opened = Repository::open();
    repository = opened.get();
    // The first walk reads every manifest; the benchmark starts warm.
    const int objects = walkNamesAndPaths().first;
    if (objects > 0)
        benchmark::RunSpecifiedBenchmarks();
    else
        std::fprintf(stderr, "bench_walk: the repository holds no objects\n");
    benchmark::Shutdown();
    repository = nullptr;
    opened.reset();
    NRTerminate_td_lib_browse();
    return objects > 0 ? 0 : 1;
}

// The embedded host's speed goals: parse a library of 10,000 blocks and
// answer lb_getBlockData for all of them, and write 10,000 icons, each well
// under half a second.
#include "EmbeddedHost.h"
#include "SyntheticRootGenerator.h"

#include "platform/HostObject.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <memory>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Host;

namespace {

constexpr int blockCount = 10000;

class SilentReport : public HostLogSink {
public:
    std::string hostClassName() const override { return "Repository.RepositoryReport"; }
    void logAction(const std::string&) override {}
    void logWarning(const std::string&, const std::string&) override {}
    void logError(const std::string&, const std::string& message) override { lastError = message; }
    std::string lastError;
};

// One synthetic root per depth, made once for the whole run.
const QString& rootOfDepth(int depth)
{
    static std::map<int, std::unique_ptr<QTemporaryDir>> roots;
    auto& directory = roots[depth];
    if (!directory) {
        directory = std::make_unique<QTemporaryDir>();
        SyntheticRootGenerator::Settings settings;
        settings.products = 1;
        settings.blocksPerProduct = blockCount;
        settings.depth = depth;
        settings.referenceShare = 0;
        QString error;
        SyntheticRootGenerator(settings).write(directory->path(), error);
    }
    static std::map<int, QString> paths;
    return paths[depth] = directory->path();
}

HostOptions optionsFor(const QString& root)
{
    HostOptions options;
    options.root = root;
    options.preferencesDirectory = root + "/prefs";
    return options;
}

std::vector<HostValue> inputs(const std::shared_ptr<SilentReport>& report, const std::string& operation,
                              std::vector<HostValue> rest)
{
    std::vector<HostValue> all{HostValue::string(operation), HostValue::object(report)};
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

void parseAndAnswerBlockData(benchmark::State& state)
{
    const QString& root = rootOfDepth(static_cast<int>(state.range(0)));
    auto report = std::make_shared<SilentReport>();
    int answered = 0;
    for (auto _ : state) {
        EmbeddedHost host(optionsFor(root));
        answered = 0;
        std::function<void(const HostValue&)> walk = [&](const HostValue& of) {
            const auto children = host.callWithTrap("tdprivate", 1, inputs(report, "lb_getChildrenHandles", {of}));
            for (double handle : children.outputs.at(0).doubles()) {
                const auto data = host.callWithTrap(
                    "tdprivate", 6, inputs(report, "lb_getBlockData", {HostValue::doubleScalar(handle)}));
                ++answered;
                if (data.outputs.at(3).toString() == "SubSystem")
                    walk(HostValue::doubleScalar(handle));
            }
        };
        walk(HostValue::string(SyntheticRootGenerator::libraryName(0).toStdString()));
        benchmark::DoNotOptimize(answered);
    }
    if (answered != blockCount)
        state.SkipWithError("not every block was answered");
    state.counters["blocks"] = answered;
}

// Argument 0 writes below the system's temporary directory, where the
// repository writer puts its icons; 1 writes to a memory file system, which
// shows the host's own cost apart from the disk's.
void writeIcons(benchmark::State& state)
{
    const QString base = state.range(0) == 0 ? QDir::tempPath() : QStringLiteral("/dev/shm");
    if (!QDir(base).exists()) {
        state.SkipWithError("no such directory");
        return;
    }
    const QString& root = rootOfDepth(1);
    auto report = std::make_shared<SilentReport>();
    EmbeddedHost host(optionsFor(root));
    const std::string library = SyntheticRootGenerator::libraryName(0).toStdString();
    const auto children = host.callWithTrap("tdprivate", 1,
                                            inputs(report, "lb_getChildrenHandles", {HostValue::string(library)}));
    QTemporaryDir out(base + QStringLiteral("/td-host-icons-"));
    std::vector<std::string> paths, files;
    for (double handle : children.outputs.at(0).doubles()) {
        const auto data = host.callWithTrap("tdprivate", 6,
                                            inputs(report, "lb_getBlockData", {HostValue::doubleScalar(handle)}));
        paths.push_back(library + "/" + data.outputs.at(0).toString());
        files.push_back((out.path() + QStringLiteral("/icons/d1/f%1icon.xml").arg(files.size())).toStdString());
    }
    const auto call = inputs(report, "lb_createSubSystemIcons",
                             {HostValue::string(library), HostValue::cellOfStrings(paths),
                              HostValue::cellOfStrings(files)});
    for (auto _ : state) {
        state.PauseTiming();
        QDir(out.path() + "/icons").removeRecursively();
        state.ResumeTiming();
        const auto result = host.callWithTrap("tdprivate", 0, call);
        if (!result.ok)
            state.SkipWithError(result.errorMessage.c_str());
    }
    state.counters["icons"] = static_cast<double>(files.size());
}

} // namespace

BENCHMARK(parseAndAnswerBlockData)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(writeIcons)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(2);

BENCHMARK_MAIN();

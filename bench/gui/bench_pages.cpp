// The library page with many tiles of realistic icons (SVG documents of 50 to
// 200 elements), in an offscreen window of 1000 x 800 pixels:
//   FillAndPaint     from updateBlocks to the first finished paint of a new
//                    page, with the rendered icons dropped first (cold) or kept
//   ScrollStep       one step of the scroll bar and its repaint
//   RenderOneIcon    the floor: one icon rendered to a tile's pixmap
// The repository's caches are warm in all of them: what is measured is the
// page. Memory per tile is the heap that a page of tiles adds, its icons
// already read.
//
//   bench_pages [--blocks N] [benchmark flags]      (N: 1000 by default)

#include "EmbeddedHost.h"
#include "SyntheticRootGenerator.h"
#include "frame/ModuleEntry.h"
#include "gui/IconPixmapCache.h"
#include "gui/LibraryBlocksPage.h"
#include "viewer/PageViewer.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPainter>
#include <QProcessEnvironment>
#include <QScrollArea>
#include <QScrollBar>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace LibraryBrowser;

namespace {

Repository* repository = nullptr;
TandrilObject library;
int tiles = 0;
double bytesPerTile = 0;

std::unique_ptr<Tdlb::PageViewer> makeViewer()
{
    auto viewer = std::make_unique<Tdlb::PageViewer>(*repository, library, LayoutType::Grid, IconSize::Medium, 10);
    viewer->resize(1000, 800);
    viewer->show();
    QApplication::processEvents();
    return viewer;
}

void fillAndPaint(benchmark::State& state, bool coldIcons)
{
    for (auto _ : state) {
        state.PauseTiming();
        if (coldIcons)
            IconPixmapCache::instance().clear();
        auto viewer = makeViewer();
        state.ResumeTiming();
        viewer->showObject();
        viewer->page().getScrollView()->viewport()->repaint();
        state.PauseTiming();
        viewer.reset();
        state.ResumeTiming();
    }
    state.counters["tiles"] = tiles;
    state.counters["bytesPerTile"] = bytesPerTile;
}

void FillAndPaintColdIcons(benchmark::State& state) { fillAndPaint(state, true); }
BENCHMARK(FillAndPaintColdIcons)->Unit(benchmark::kMillisecond);

void FillAndPaintWarmIcons(benchmark::State& state) { fillAndPaint(state, false); }
BENCHMARK(FillAndPaintWarmIcons)->Unit(benchmark::kMillisecond);

void ScrollStep(benchmark::State& state)
{
    auto viewer = makeViewer();
    viewer->showObject();
    QScrollBar* bar = viewer->page().getScrollView()->verticalScrollBar();
    QWidget* viewport = viewer->page().getScrollView()->viewport();
    // A wheel notch: three steps of the bar.
    const int step = 3 * bar->singleStep();
    int direction = 1;
    for (auto _ : state) {
        if (bar->value() + direction * step > bar->maximum() || bar->value() + direction * step < 0)
            direction = -direction;
        bar->setValue(bar->value() + direction * step);
        viewport->repaint();
    }
    state.counters["tiles"] = tiles;
}
BENCHMARK(ScrollStep)->Unit(benchmark::kMillisecond);

void RenderOneIcon(benchmark::State& state)
{
    const BlockIconPtr icon = repository->getIcon(repository->getChildrenIterator(library).current());
    QPixmap pixmap(124, 76);
    for (auto _ : state) {
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        icon->render(painter, QRectF(0, 0, 114, 76));
    }
}
BENCHMARK(RenderOneIcon)->Unit(benchmark::kMicrosecond);

// Heap taken by one page of tiles, the reader's icons already held.
void measureMemory()
{
    const IconTable held = repository->getIcons(library);
    auto viewer = makeViewer();
    viewer->showObject();
    viewer.reset();
    viewer = makeViewer();
    const std::size_t before = mallinfo2().uordblks;
    viewer->showObject();
    const std::size_t after = mallinfo2().uordblks;
    tiles = int(viewer->page().getBlocksDisplayPathNames().size());
    bytesPerTile = tiles ? double(after - before) / tiles : 0;
}

[[noreturn]] void usage(const char* problem)
{
    std::fprintf(stderr, "bench_pages: %s\nusage: bench_pages [--blocks N]\n", problem);
    std::exit(2);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    BrowserUtils::setScreenDPIOverride(96);
    const QStringList arguments = application.arguments().mid(1);
    int blocks = 1000;
    for (int i = 0; i < arguments.size(); i += 2) {
        bool ok = false;
        if (arguments[i] == "--blocks" && i + 1 < arguments.size())
            blocks = arguments[i + 1].toInt(&ok);
        if (!ok || blocks < 1)
            usage("unknown option or bad value");
    }

    QTemporaryDir scratch;
    Host::SyntheticRootGenerator::Settings settings;
    settings.products = 1;
    settings.blocksPerProduct = blocks;
    settings.depth = 1;
    settings.crossReferences = false;
    settings.realisticIcons = true;
    QString error;
    if (!Host::SyntheticRootGenerator(settings).write(scratch.filePath("root"), error))
        usage(qPrintable(error));
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = scratch.filePath("root");
    options.preferencesDirectory = scratch.filePath("prefs");
    Host::EmbeddedHost host(options);
    host.install();
    NRInitialize_td_lib_browse();
    RepositoryPtr opened = Repository::open();
    repository = opened.get();
    repository->generateRepository(GenerationMode::Minimal);
    library = repository->getTopLevelIterator().current();
    // Read the manifests and icons once: the page is what is measured.
    repository->getIcons(library);
    measureMemory();
    std::fprintf(stderr, "bench_pages: %d tiles of %s, %.0f bytes of heap each\n", tiles,
                 library.getDisplayName().c_str(), bytesPerTile);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    library = TandrilObject();
    repository = nullptr;
    opened.reset();
    NRTerminate_td_lib_browse();
    return 0;
}

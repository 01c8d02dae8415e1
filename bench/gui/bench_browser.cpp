// The browser window on a large root, measured as a user waits for it:
//   first tree      from the start of the process (and of main) to the first
//                   painted tree; floor: a bare tree of as many products,
//                   made and painted in the same process
//   page            a click on a product to its finished, painted library
//                   page: cold (first visit) and warm (again, after another);
//                   floor: its icons rendered to pixmaps of the tiles' size
//   search          Return in the search box to the painted results page,
//                   and on to the end of what its later turns do (sections
//                   made, old ones deleted), with the longest stall of the
//                   event loop until then (a zero-interval timer records the
//                   gaps); floor: the same search through the repository
//                   alone, without the window
//   memory          peak resident size after visiting every product
// The root must have its store generated (tdlb --root R --prefdir P update).
//
//   bench_browser --root DIR --prefdir DIR [--search TEXT] [--visits N]

#include "EmbeddedHost.h"
#include "frame/ModuleEntry.h"
#include "gui/IconPixmapCache.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/StandaloneBrowser.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMainWindow>
#include <QProcessEnvironment>
#include <QScrollArea>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace LibraryBrowser;
using Clock = std::chrono::steady_clock;

namespace {

const Clock::time_point mainStart = Clock::now();

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Milliseconds since the kernel started the process (10 ms resolution).
double msSinceProcessStart()
{
    QFile stat("/proc/self/stat");
    QFile uptime("/proc/uptime");
    if (!stat.open(QIODevice::ReadOnly) || !uptime.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = stat.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double startTicks = fields.value(19).toDouble();
    const double now = uptime.readAll().split(' ').value(0).toDouble();
    return (now - startTicks / double(sysconf(_SC_CLK_TCK))) * 1000.0;
}

// Waits until a widget has painted once after the call.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget* widget) : m_widget(widget) { widget->installEventFilter(this); }
    ~PaintWatch() override { m_widget->removeEventFilter(this); }
    void wait()
    {
        while (!m_painted)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            m_painted = true;
        return false;
    }

private:
    QWidget* m_widget;
    bool m_painted = false;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

long peakResidentMB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// CPU time of the process (user + system): on two cores shared with other
// work the wall time of a figure says little about its cost.
double cpuMs()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& t) { return double(t.tv_sec) * 1000.0 + double(t.tv_usec) / 1000.0; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The window is painted at once after the work, so that the paint counts.
double showNode(StandaloneBrowser& browser, const std::string& path)
{
    const Clock::time_point start = Clock::now();
    browser.selectTreeNodeByName(path);
    browser.window()->repaint();
    return msSince(start);
}

// The floor of a cold page: walking the children of a product not read yet,
// which a page can't do without.
double readChildren(Repository& repository, const TandrilObject& library)
{
    const Clock::time_point start = Clock::now();
    std::size_t names = 0;
    for (TandrilObjectIterator it = repository.getChildrenIterator(library); it.isValidIterator(); it.next())
        names += it.current().getDisplayName().size();
    return names ? msSince(start) : -1;
}

// Each figure on standard error as soon as it is known: on a root of a
// million blocks the visit of every product at the end takes many minutes.
void progress(const char* measure, double value, const char* unit)
{
    std::fprintf(stderr, "bench_browser: %s: %.0f %s\n", measure, value, unit);
    std::fflush(stderr);
}

[[noreturn]] void usage(const char* problem)
{
    std::fprintf(stderr, "bench_browser: %s\nusage: bench_browser --root DIR --prefdir DIR [--search TEXT] "
                         "[--visits N]\n", problem);
    std::exit(2);
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    BrowserUtils::setScreenDPIOverride(96);
    QString root, prefdir, text = "Block 1";
    int visits = 3;
    const QStringList arguments = application.arguments().mid(1);
    for (int i = 0; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == "--root")
            root = arguments[i + 1];
        else if (arguments[i] == "--prefdir")
            prefdir = arguments[i + 1];
        else if (arguments[i] == "--search")
            text = arguments[i + 1];
        else if (arguments[i] == "--visits")
            visits = std::max(1, arguments[i + 1].toInt());
        else
            usage("unknown option");
    }
    if (root.isEmpty() || prefdir.isEmpty() || arguments.size() % 2)
        usage("--root and --prefdir are needed");

    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = root;
    options.preferencesDirectory = prefdir;
    Host::EmbeddedHost host(options);
    host.install();
    NRInitialize_td_lib_browse();
    QFile::remove(BrowserPreferences::defaultFileName());

    StandaloneBrowser* browser = StandaloneBrowser::getInstance();
    {
        PaintWatch watch(browser->tree()->viewport());
        browser->showBrowser();
        watch.wait();
    }
    const double treeFromProcess = msSinceProcessStart();
    const double treeFromMain = msSince(mainStart);
    progress("first painted tree, from process start", treeFromProcess, "ms");
    progress("CPU (user + sys) of the process until then", cpuMs(), "ms");

    // Floor: a bare tree of as many top-level items, made and painted.
    const std::vector<std::string> names = browser->getSortedLibraryNames();
    double bareTree = 0;
    {
        const Clock::time_point start = Clock::now();
        QTreeWidget tree;
        for (const std::string& name : names)
            tree.addTopLevelItem(new QTreeWidgetItem(QStringList(QString::fromStdString(name))));
        tree.resize(200, 400);
        PaintWatch watch(tree.viewport());
        tree.show();
        watch.wait();
        bareTree = msSince(start);
    }

    // Pages: products cold then warm, each after another page; the floor
    // reads the icons of products not visited yet.
    std::vector<double> cold, warm, floors;
    const int last = int(names.size()) - 1;
    for (int i = 0; i < visits && 2 * i + 2 < last; ++i) {
        IconPixmapCache::instance().clear();
        cold.push_back(showNode(*browser, names[last - 2 * i]));
        floors.push_back(readChildren(browser->repository(), browser->repository().getProduct(names[last - 2 * i - 1])));
        showNode(*browser, names[0]);
        warm.push_back(showNode(*browser, names[last - 2 * i]));
    }
    const int tiles = int(browser->libraryPage()->getBlocksDisplayPathNames().size());
    progress("page, cold", median(cold), "ms");
    progress("page, warm", median(warm), "ms");

    // The search, from Return to the painted results, with the longest gap
    // between two turns of the event loop: first on manifests not read yet,
    // then again with "Match case" (the same hits, a new walk).
    QLineEdit* edit = browser->searchComboBox()->lineEdit();
    edit->setText(text);
    const auto measureSearch = [&](double& stall, const char* measure) {
        const double cpuStart = cpuMs();
        std::vector<double> gaps;
        Clock::time_point lastTick = Clock::now();
        QTimer ticker;
        ticker.setInterval(0);
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            gaps.push_back(msSince(lastTick));
            lastTick = Clock::now();
        });
        const Clock::time_point start = Clock::now();
        lastTick = start;
        ticker.start();
        QTest::keyClick(edit, Qt::Key_Return);
        browser->window()->repaint();
        const double elapsed = msSince(start);
        while (browser->resultsPage()->laterTurnsPending())
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        browser->window()->repaint();
        const double complete = msSince(start);
        gaps.push_back(msSince(lastTick));
        stall = *std::max_element(gaps.begin(), gaps.end());
        progress(measure, elapsed, "ms");
        progress("every section made, painted", complete, "ms");
        progress("CPU (user + sys) of it", cpuMs() - cpuStart, "ms");
        progress("longest stall during it", stall, "ms");
        return elapsed;
    };
    double coldStall = 0;
    double warmStall = 0;
    const double coldSearch = measureSearch(coldStall, "search, manifests not read yet");
    progress("peak resident memory after it", double(peakResidentMB()), "MB");
    browser->setSearchOptions({false, true, false});
    const double search = measureSearch(warmStall, "search again, manifests read");
    const std::string status = browser->getCurrentStatusBarMessage();

    double searchFloor = 0;
    int hits = 0;
    {
        const Clock::time_point start = Clock::now();
        for (TandrilObjectIterator products = browser->repository().getTopLevelIterator(); products.isValidIterator();
             products.next())
            for (TandrilObjectIterator found = browser->repository().findBlocks(text.toStdString(), products.current());
                 found.isValidIterator(); found.next())
                hits += !found.current().getDisplayName().empty();
        searchFloor = msSince(start);
    }

    for (const std::string& name : names)
        browser->selectTreeNodeByName(name);
    const long memory = peakResidentMB();

    std::printf("| Measure | Median | Floor (same run) | Ratio |\n|---|---|---|---|\n");
    std::printf("| first painted tree, from process start | %.0f ms | %.0f ms (bare tree of %zu products) | |\n",
                treeFromProcess, bareTree, names.size());
    std::printf("| first painted tree, from main | %.0f ms | | |\n", treeFromMain);
    std::printf("| page of %d tiles, cold (%d runs) | %.0f ms | %.0f ms (reading its children) | %.1f |\n", tiles,
                int(cold.size()), median(cold), median(floors), median(cold) / std::max(1.0, median(floors)));
    std::printf("| page of %d tiles, warm | %.0f ms | | |\n", tiles, median(warm));
    std::printf("| search '%s' (%d hits), Return to painted results, manifests read | %.0f ms | %.0f ms (findBlocks "
                "and the hits' names alone) | %.1f |\n",
                text.toUtf8().constData(), hits, search, searchFloor, search / std::max(1.0, searchFloor));
    std::printf("| longest event-loop stall during that search | %.0f ms | | |\n", warmStall);
    std::printf("| the same search first, manifests not read yet | %.0f ms | | |\n", coldSearch);
    std::printf("| longest event-loop stall during the first search | %.0f ms | | |\n", coldStall);
    std::printf("| peak resident memory after visiting every product | %ld MB | | |\n", memory);
    std::fprintf(stderr, "bench_browser: %s\n", status.c_str());

    StandaloneBrowser::destroyInstance();
    NRTerminate_td_lib_browse();
    return 0;
}

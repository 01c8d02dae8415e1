#include "ResultsPageFixture.h"

#include "SyntheticRootGenerator.h"
#include "frame/MessageCatalogue.h"
#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SectionHeader.h"
#include "platform/MessageService.h"
#include "support/Files.h"

#include <QApplication>
#include <QLabel>
#include <QProcessEnvironment>
#include <QScrollArea>
#include <QVBoxLayout>

namespace LibraryBrowser::Testing {

std::unique_ptr<QTemporaryDir> ResultsPageFixture::s_root;
std::unique_ptr<QTemporaryDir> ResultsPageFixture::s_prefs;
std::unique_ptr<Host::EmbeddedHost> ResultsPageFixture::s_host;
std::shared_ptr<Repository> ResultsPageFixture::s_repository;

ResultsWindow::ResultsWindow(Repository& repository, LayoutType layout, const QSize& size)
    : m_repository(repository), m_layout(layout)
{
    m_font = QFont(QStringLiteral("Arial"));
    m_font.setPointSizeF(10);
    m_window.resize(size);
    auto* layoutBox = new QVBoxLayout(&m_window);
    layoutBox->setContentsMargins(0, 0, 0, 0);
    m_page = std::make_unique<ResultsBlocksPage>(*this, layout, IconSize::Compact, m_font,
                                                 getColorPref(PrefKey::LBColorSearchResultsBackgroundTop), &m_window);
    layoutBox->addWidget(m_page->getScrollView());
    m_window.show();
    QApplication::processEvents();
}

ResultsWindow::~ResultsWindow() = default;

void ResultsWindow::search(const std::string& text, bool regExp, bool wholeWord, bool matchCase)
{
    const SearchResults previous = results;
    results = SearchResults();
    for (TandrilObjectIterator it = m_repository.getTopLevelIterator();
         it.isValidIterator() && int(results.libraries.size()) != walkedLibraries; it.next())
        results.libraries.push_back(it.current().toLibrary());
    for (const Library& library : results.libraries) {
        const TandrilObjectIterator found = m_repository.findBlocks(
            text, TandrilObject(library), regExp ? SearchOptions::RegExpOn : SearchOptions::RegExpOff,
            wholeWord ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff,
            matchCase ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff);
        if (TandrilObjectIterator(found).isEmpty())
            continue;
        int libraries = 0;
        const SingleLibrarySearchResults_tag hits = countSearchHits(found, libraries, nullptr);
        if (hits.hits() > 0) {
            ++results.numLibrariesWithHits;
            results.maxHitsPerLibrary = std::max(results.maxHitsPerLibrary, hits.hits());
        }
        if (hits.longestName.size() > results.longestBlockName.size())
            results.longestBlockName = hits.longestName;
        results.numBlocks += hits.numBlocks;
        results.numSubsystems += hits.numSubsystems;
        results.searchResults[library] = hits;
    }
    results.searchString = text;
    results.useRegExp = regExp;
    results.matchWholeWord = wholeWord;
    results.matchCase = matchCase;
    results.resultsNeedReload = previous.searchString != text || previous.useRegExp != regExp ||
                                previous.matchWholeWord != wholeWord || previous.matchCase != matchCase ||
                                previous.resultsNeedReload;
}

void ResultsWindow::update()
{
    statusMessages.clear();
    m_page->updateBlocks(0);
    QApplication::processEvents();
}

QColor ResultsWindow::getColorPref(const char* key) const
{
    return BrowserPreferences::defaultOf(key).value<QColor>();
}

BlocksPage* ResultsWindow::internalGetCurrentBlocksPage() { return m_page.get(); }

void ResultsWindow::internalUpdateDescription(GuiBlock* tile)
{
    describedPath = tile ? tile->getDisplayPath() : std::string();
}

std::string ResultsWindow::getCurrentStatusBarMessage() const
{
    return statusMessages.empty() ? std::string() : statusMessages.back();
}

void ResultsPageFixture::SetUpTestSuite()
{
    startApplication();
    open(Host::HostOptions::bundledRoot());
}

void ResultsPageFixture::startApplication()
{
    static int argc = 1;
    static char name[] = "td_gui_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance())
        new QApplication(argc, argv);
    if (!MessageService::instance().hasTableFor(MessageCatalogue::Facility))
        MessageService::instance().addPrimaryTable(MessageCatalogue::table());
}

void ResultsPageFixture::openSyntheticRoot(int products, int blocksPerProduct)
{
    startApplication();
    Host::SyntheticRootGenerator::Settings settings;
    settings.products = products;
    settings.blocksPerProduct = blocksPerProduct;
    settings.depth = 1;
    settings.crossReferences = false;
    settings.referenceShare = 0;
    QTemporaryDir source;
    QString error;
    if (!Host::SyntheticRootGenerator(settings).write(source.path(), error))
        FAIL() << error.toStdString();
    open(source.path());
}

void ResultsPageFixture::open(const QString& root)
{
    s_root = std::make_unique<QTemporaryDir>();
    s_prefs = std::make_unique<QTemporaryDir>();
    for (const auto& [file, bytes] : snapshot(root.toStdString()))
        writeFile(s_root->path().toStdString() + "/" + file.toStdString(), bytes);
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = s_root->path();
    options.preferencesDirectory = s_prefs->path();
    s_host = std::make_unique<Host::EmbeddedHost>(options);
    s_host->install();
    s_repository = Repository::open();
}

void ResultsPageFixture::TearDownTestSuite()
{
    s_repository.reset();
    if (s_host)
        s_host->uninstall();
    s_host.reset();
    s_prefs.reset();
    s_root.reset();
}

void ResultsPageFixture::SetUp()
{
    BrowserUtils::setScreenDPIOverride(96);
    ASSERT_TRUE(s_repository && s_repository->exists());
}

std::unique_ptr<ResultsWindow> ResultsPageFixture::makeWindow(LayoutType layout, QSize size)
{
    return std::make_unique<ResultsWindow>(*s_repository, layout, size);
}

std::vector<std::string> ResultsPageFixture::visibleSections(ResultsBlocksPage& page)
{
    std::vector<std::string> names;
    for (const std::string& name : page.getPageSectionNames())
        if (page.isResultsSectionVisibleGui(name))
            names.push_back(name);
    return names;
}

std::string ResultsPageFixture::sectionCount(ResultsBlocksPage& page, const std::string& name)
{
    const PageSection* section = page.getSectionByName(name);
    return section ? section->header->count()->text().toStdString() : std::string();
}

std::string ResultsPageFixture::selectedPath(ResultsBlocksPage& page)
{
    return page.getSelectedBlock() ? page.getSelectedBlock()->getDisplayPath() : std::string();
}

} // namespace LibraryBrowser::Testing

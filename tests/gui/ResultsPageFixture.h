#pragma once

#include "PageTestSupport.h"
#include "gui/ResultsPageHost.h"
#include "gui/SearchResults.h"
#include "repository/Repository.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {
class ResultsBlocksPage;
}

namespace LibraryBrowser::Testing {

// A window for the results page alone: it keeps the results of a search as
// the browser does, records what the page tells it, and shows the page in
// a top-level widget offscreen.
class ResultsWindow : public FakeHost<ResultsPageHost> {
public:
    ResultsWindow(Repository& repository, LayoutType layout, const QSize& size);
    ~ResultsWindow() override;

    ResultsBlocksPage& page() { return *m_page; }
    QWidget& widget() { return m_window; }
    SearchResults results;
    bool remember = true;

    // Walks the libraries as the search does and keeps the hits for the
    // page's next update.
    void search(const std::string& text, bool regExp = false, bool wholeWord = false, bool matchCase = false);
    void update();

    const SearchResults& getSearchResults() const override { return results; }
    void clearResultsNeedReload() override { results.resultsNeedReload = false; }
    bool rememberUserHiddenSections() const override { return remember; }
    bool isTitleElidedMiddle() const override { return true; }
    QColor getColorPref(const char* key) const override;
    QRect getBlocksGeometry() const override { return QRect(QPoint(0, 0), m_window.size()); }
    QRect getPosition() const override { return m_window.geometry(); }

private:
    Repository& m_repository;
    QWidget m_window;
    std::unique_ptr<ResultsBlocksPage> m_page;
};

// A repository on a private root, made once for a suite: the example root,
// or a synthetic one when a suite asks for it.
class ResultsPageFixture : public ::testing::Test {
protected:
    // On the example root.
    static void SetUpTestSuite() { s_session = std::make_unique<ExampleRootSession>(); }
    static void TearDownTestSuite() { s_session.reset(); }
    static void openSyntheticRoot(int products, int blocksPerProduct)
    {
        s_session = ExampleRootSession::synthetic(products, blocksPerProduct);
    }

    void SetUp() override;
    std::unique_ptr<ResultsWindow> makeWindow(LayoutType layout = LayoutType::Grid, QSize size = QSize(640, 480));

    // What a user sees of the page.
    static std::vector<std::string> visibleSections(ResultsBlocksPage& page);
    static std::string sectionCount(ResultsBlocksPage& page, const std::string& name);
    static std::string selectedPath(ResultsBlocksPage& page);

private:
    static std::unique_ptr<ExampleRootSession> s_session;
};

} // namespace LibraryBrowser::Testing

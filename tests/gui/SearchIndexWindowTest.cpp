// The window's search over a store that keeps search indexes, on products
// whose library references lead into each other: the same list, counts and
// sections as a walk of them all.

#include "BrowserWindowFixture.h"

#include "gui/SearchResults.h"

#include <map>

namespace LibraryBrowser::Testing {
namespace {

TEST(SearchIndexWindowTest, TheListCountsAndSectionsAreThoseOfTheWalk)
{
    const Host::SyntheticRootGenerator::Settings settings{12, 60, 3, 0.1, true, false, 7};
    QTemporaryDir source;
    QString error;
    ASSERT_TRUE(Host::SyntheticRootGenerator(settings).write(source.path(), error)) << error.toStdString();
    ExampleRootSession session(source.path());
    Repository& repository = *session.repositoryPtr();
    const auto texts = std::make_shared<QStringList>();
    std::unique_ptr<StandaloneBrowser> window = showBrowser(session.repositoryPtr(), texts);

    std::map<std::string, TandrilObject> products;
    int references = 0;
    for (TandrilObjectIterator it = repository.getTopLevelIterator(); it.isValidIterator(); it.next()) {
        products.emplace(it.current().getDisplayName(), it.current());
        ASSERT_TRUE(repository.searchIndexed(it.current(), "Reference", SearchOptions::RegExpOff,
                                             SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff, false))
            << it.current().getDisplayName();
        for (TandrilObjectIterator below = repository.getDepthFirstIterator(it.current()); below.isValidIterator();
             below.next())
            references += below.current().isLibraryRef();
    }
    EXPECT_GT(references, 12);

    struct Search {
        std::string text;
        std::vector<bool> options; // regular expression, match case, whole word
    };
    const std::vector<Search> searches = {{"Block 1", {false, false, false}},
                                          {"Block 3", {false, true, false}},
                                          {"Block 2", {false, false, true}},
                                          {"^(Sub|Block [0-9])", {true, false, false}}};
    for (const Search& search : searches) {
        window->setSearchOptions(search.options);
        window->searchForBlock(search.text);
        std::vector<std::string> listed;
        std::map<std::string, std::vector<std::string>> sections;
        int libraries = 0;
        int blocks = 0;
        int subsystems = 0;
        int withHits = 0;
        for (const std::string& name : window->getSortedLibraryNames()) {
            std::vector<std::string> own;
            const SingleLibrarySearchResults_tag hits = countSearchHits(
                repository.findBlocks(search.text, products.at(name),
                                      search.options[0] ? SearchOptions::RegExpOn : SearchOptions::RegExpOff,
                                      search.options[2] ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff,
                                      search.options[1] ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff),
                libraries, &own);
            blocks += hits.numBlocks;
            subsystems += hits.numSubsystems;
            withHits += hits.hits() > 0;
            if (hits.hits() > 0)
                sections[name] = own;
            listed.insert(listed.end(), own.begin(), own.end());
        }
        ASSERT_GT(listed.size(), 144u) << search.text;
        EXPECT_EQ(window->getSearchResultsDisplayPathNames(), listed) << search.text;
        EXPECT_EQ(window->getCurrentStatusBarMessage(),
                  "Matches for '" + search.text + "'    " + std::to_string(withHits) + " blocksets    "
                      + std::to_string(subsystems) + " subsystems    " + std::to_string(blocks) + " blocks");
        // Every section, those the page left shut included, holds its walk.
        std::map<std::string, std::vector<std::string>> shown;
        for (const std::string& name : window->getResultsPageSectionNames()) {
            EXPECT_TRUE(window->showResultsSectionByName(name)) << name;
            shown[name] = window->getResultsSectionBlockNames(name);
        }
        EXPECT_EQ(shown, sections) << search.text;
    }
}

} // namespace
} // namespace LibraryBrowser::Testing

// The search index the writer keeps with each product: every search the
// indexes answer, library references followed, gives what the walk over the
// manifests gives; an index follows the product's changes, and one that
// can't be used leaves the search to the walk.

#include "GenerationFixture.h"

#include "gui/SearchResults.h"
#include "platform/ZipArchive.h"
#include "repository/search/IndexedSearch.h"

#include <tuple>

namespace LibraryBrowser::Testing {
namespace {

class SearchIndexTest : public GenerationFixture {
protected:
    struct Answer {
        bool empty = true;
        int libraries = 0;
        int blocks = 0;
        int subsystems = 0;
        std::string longestName;
        std::vector<std::string> listed;
        bool operator==(const Answer& o) const
        {
            return std::tie(empty, libraries, blocks, subsystems, longestName, listed)
                   == std::tie(o.empty, o.libraries, o.blocks, o.subsystems, o.longestName, o.listed);
        }
    };
    struct Options {
        SearchOptions::RegExp regExp;
        SearchOptions::WholeWord wholeWord;
        SearchOptions::MatchCase matchCase;
        bool descriptions;
    };

    // As the window counts the hits of a walk.
    static Answer walked(XMLRepositoryReader& reader, const TandrilObject& product, const std::string& pattern,
                         const Options& o)
    {
        TandrilObjectIterator found =
            o.descriptions
                ? reader.findBlocksByNameOrDescription(pattern, product, o.regExp, o.wholeWord, o.matchCase)
                : reader.findBlocks(pattern, product, o.regExp, o.wholeWord, o.matchCase);
        Answer answer;
        answer.empty = found.isEmpty();
        const SingleLibrarySearchResults_tag hits = countSearchHits(found, answer.libraries, &answer.listed);
        answer.blocks = hits.numBlocks;
        answer.subsystems = hits.numSubsystems;
        answer.longestName = hits.longestName;
        return answer;
    }
    // As the window counts the hits of the indexes; nothing where they
    // can't answer.
    static std::optional<Answer> indexed(XMLRepositoryReader& reader, const TandrilObject& product,
                                         const std::string& pattern, const Options& o)
    {
        std::optional<IndexedSearch::Hits> found =
            reader.searchIndexed(product, pattern, o.regExp, o.wholeWord, o.matchCase, o.descriptions);
        if (!found)
            return std::nullopt;
        Answer answer;
        answer.empty = found->matched == 0;
        const SingleLibrarySearchResults_tag hits =
            indexedSearchHits(*found, TandrilObjectIterator(), answer.libraries, answer.listed);
        answer.blocks = hits.numBlocks;
        answer.subsystems = hits.numSubsystems;
        answer.longestName = hits.longestName;
        return answer;
    }
    std::string manifestsArchive(const std::string& product) const
    {
        return store() + "/" + product + "/lb_" + product + "_manifests_repos.rps";
    }
};

TEST_F(SearchIndexTest, EveryOptionFindsWhatTheWalkFinds)
{
    generate();
    const std::unique_ptr<XMLRepositoryReader> reader = makeReader();
    const std::vector<std::string> patterns = {"a", "Wave", "wave", "sine wave", "^S", "s$", "in|out", "S*e", "?um",
                                               "[A-Z][a-z]+ [A-Z]", "delay", "the", "Signal"};
    std::vector<Options> options;
    for (int bits = 0; bits < 16; ++bits)
        options.push_back({SearchOptions::RegExp(bits & 1), SearchOptions::WholeWord((bits >> 1) & 1),
                           SearchOptions::MatchCase((bits >> 2) & 1), bool(bits & 8)});
    std::vector<std::string> withIndex;
    std::vector<std::string> without;
    int hitsCompared = 0;
    for (TandrilObjectIterator it = reader->getProductsIterator(); it.isValidIterator(); it.next()) {
        const TandrilObject product = it.current();
        const bool answers = indexed(*reader, product, "a", options.front()).has_value();
        (answers ? withIndex : without).push_back(product.getDisplayName());
        if (!answers)
            continue;
        for (const std::string& pattern : patterns)
            for (const Options& o : options) {
                const Answer expected = walked(*reader, product, pattern, o);
                EXPECT_EQ(indexed(*reader, product, pattern, o), expected)
                    << product.getDisplayName() << " '" << pattern << "' regexp " << o.regExp << " word "
                    << o.wholeWord << " case " << o.matchCase << " descriptions " << o.descriptions;
                hitsCompared += expected.blocks + expected.subsystems + expected.libraries;
            }
    }
    // Library references are followed into the libraries the products
    // depend on; only the palette, whose members are computed, is walked.
    EXPECT_EQ(std::make_tuple(withIndex, without),
              std::make_tuple(std::vector<std::string>{"Arithmetica", "Kinetics", "Switchyard", "Tandril",
                                                       "Wavecraft Signals"},
                              std::vector<std::string>{"Signal Workbench"}));
    EXPECT_GT(hitsCompared, 1000);
    EXPECT_FALSE(logHas("search index"));
}

// A library changed and generated again: the index published with the new
// manifests names what they name. The products that depend on the library
// are generated again too, their unchanged manifests read from the archive.
TEST_F(SearchIndexTest, FollowsTheProductAcrossAGeneration)
{
    generate();
    editRootFile("toolbox/wavecraft/wavecraft.tdlib.json", "\"Square Wave\"", "\"Square Pulse\"");
    generate();
    const std::unique_ptr<XMLRepositoryReader> reader = makeReader();
    const Options o{SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff, true};
    int answered = 0;
    for (TandrilObjectIterator it = reader->getProductsIterator(); it.isValidIterator(); it.next()) {
        const TandrilObject product = it.current();
        if (product.isPalette())
            continue;
        for (const char* pattern : {"Square", "Wave", "Sources", "a"}) {
            const std::optional<Answer> answer = indexed(*reader, product, pattern, o);
            answered += answer.has_value();
            EXPECT_EQ(answer, walked(*reader, product, pattern, o)) << product.getDisplayName() << " " << pattern;
        }
    }
    EXPECT_EQ(answered, 20);
    const Options plain{SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff, false};
    const std::optional<Answer> pulse = indexed(*reader, reader->getTandrilObject("wavecraft"), "Square", plain);
    ASSERT_TRUE(pulse);
    EXPECT_EQ(pulse->listed, std::vector<std::string>{"Wavecraft Signals/Sources/Square Pulse"});
}

// An index that can't be read is said once and left to the walk; a store
// made before there were indexes has none, and that is no fault.
TEST_F(SearchIndexTest, AnIndexDamagedOrMissingLeavesTheSearchToTheWalk)
{
    generate();
    const auto rewrite = [&](const std::string& product, const QByteArray* bytes) {
        ZipArchive archive;
        ASSERT_TRUE(archive.open(manifestsArchive(product), ZipArchive::OpenExisting));
        if (bytes)
            ASSERT_TRUE(archive.add(SearchIndex::EntryName, *bytes));
        else
            ASSERT_TRUE(archive.remove(archive.find(SearchIndex::EntryName)));
        ASSERT_TRUE(archive.close());
    };
    ZipArchive archive;
    ASSERT_TRUE(archive.open(manifestsArchive("arithmetica"), ZipArchive::ReadOnly));
    QByteArray good;
    ASSERT_TRUE(archive.read(archive.find(SearchIndex::EntryName), good));
    archive.close();
    const QByteArray truncated = good.left(good.size() - 3);
    rewrite("arithmetica", &truncated);
    rewrite("wavecraft", nullptr);

    const std::unique_ptr<XMLRepositoryReader> reader = makeReader();
    EXPECT_FALSE(reader->getSearchIndex(reader->getTandrilObject("arithmetica")));
    EXPECT_FALSE(reader->getSearchIndex(reader->getTandrilObject("wavecraft")));
    std::vector<std::string> said;
    for (const std::string& line : reader->getRepositoryReport()->getLog())
        if (line.find("search index") != std::string::npos)
            said.push_back(line);
    ASSERT_EQ(said.size(), 1u);
    EXPECT_NE(said[0].find("The search index of product Arithmetica in the repository store " + store()
                           + " can't be used (it ends inside object"),
              std::string::npos)
        << said[0];
    // Whatever the bytes, an index is read in full or refused.
    std::string problem;
    for (qsizetype size = 0; size < good.size(); size += 7)
        EXPECT_FALSE(SearchIndex::fromBytes(good.left(size), problem)) << size;
    EXPECT_FALSE(SearchIndex::fromBytes(good + "x", problem));
    EXPECT_TRUE(SearchIndex::fromBytes(good, problem));
}

} // namespace
} // namespace LibraryBrowser::Testing

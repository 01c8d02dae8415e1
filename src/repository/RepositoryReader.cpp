#include "repository/RepositoryReader.h"

#include "repository/ReaderCache.h"
#include "repository/TandrilObjectDepthFirstIterator.h"
#include "repository/search/EitherCriteria.h"
#include "repository/search/ExactBlockTypeCriteria.h"
#include "repository/search/IsTopLevelCriteria.h"
#include "repository/search/MatchStringCriteria.h"
#include "repository/search/TandrilObjectSearchIterator.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"

namespace LibraryBrowser {

bool RepositoryReader::isProductUpToDate(const std::string& name)
{
    return isProductUpToDate(getTandrilObject(name), false);
}

TandrilObjectIterator RepositoryReader::getTopLevelIterator()
{
    return TandrilObjectSearchIterator::filter(getProductsIterator(), std::make_unique<IsTopLevelCriteria>());
}

TandrilObjectIterator RepositoryReader::getChildrenIterator(const TandrilObject& object, const StringId& blockType)
{
    return TandrilObjectSearchIterator::filter(getChildrenIterator(object),
                                               std::make_unique<ExactBlockTypeCriteria>(blockType));
}

TandrilObject RepositoryReader::getTandrilObject(const std::string& id)
{
    return getCache()->findObject(StringId(id));
}

IconTable RepositoryReader::getIcons(const TandrilObject& object)
{
    IconTable icons;
    for (TandrilObjectIterator it = getChildrenIterator(object); it.isValidIterator(); it.next()) {
        const TandrilObject child = it.current();
        icons[child] = getIcon(child);
    }
    return icons;
}

Library RepositoryReader::getProduct(const std::string& name)
{
    return getCache()->getProduct(name);
}

std::shared_ptr<const SearchIndex> RepositoryReader::getSearchIndex(const TandrilObject&)
{
    return nullptr;
}

std::optional<IndexedSearch::Hits> RepositoryReader::searchIndexed(const TandrilObject& product,
                                                                  const std::string& pattern,
                                                                  SearchOptions::RegExp regExp,
                                                                  SearchOptions::WholeWord wholeWord,
                                                                  SearchOptions::MatchCase matchCase, bool descriptions)
{
    if (!product.isLibrary())
        return std::nullopt;
    const std::string id = product.id().str();
    IndexedSearch search(pattern, regExp, wholeWord, matchCase, descriptions,
                         [&](const std::string& productId) -> std::shared_ptr<const SearchIndex> {
                             const Library other = productId == id ? product.toLibrary() : getProduct(productId);
                             return other.isValid() ? getSearchIndex(other) : nullptr;
                         });
    return search.search(id, product.getDisplayPath());
}

TandrilObjectIterator RepositoryReader::getDepthFirstIterator()
{
    return TandrilObjectIterator(std::make_unique<TandrilObjectDepthFirstIterator>(this, TandrilObject(), true));
}

TandrilObjectIterator RepositoryReader::getDepthFirstIterator(const TandrilObject& root)
{
    return TandrilObjectIterator(std::make_unique<TandrilObjectDepthFirstIterator>(this, root, false));
}

TandrilObjectIterator RepositoryReader::findBlocks(const std::string& pattern)
{
    return findBlocks(pattern, SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff);
}

TandrilObjectIterator RepositoryReader::findBlocks(const std::string& pattern, SearchOptions::RegExp regExp,
                                                   SearchOptions::WholeWord wholeWord,
                                                   SearchOptions::MatchCase matchCase)
{
    return TandrilObjectSearchIterator::filter(
        getDepthFirstIterator(), std::make_unique<MatchStringCriteria>(pattern, regExp, wholeWord, matchCase,
                                                                       MatchStringCriteria::displayName()));
}

TandrilObjectIterator RepositoryReader::findBlocks(const std::string& pattern, const TandrilObject& object)
{
    return findBlocks(pattern, object, SearchOptions::RegExpOff, SearchOptions::WholeWordOff,
                      SearchOptions::MatchCaseOff);
}

TandrilObjectIterator RepositoryReader::findBlocks(const std::string& pattern, const TandrilObject& object,
                                                   SearchOptions::RegExp regExp, SearchOptions::WholeWord wholeWord,
                                                   SearchOptions::MatchCase matchCase)
{
    return TandrilObjectSearchIterator::filter(
        getDepthFirstIterator(object), std::make_unique<MatchStringCriteria>(pattern, regExp, wholeWord, matchCase,
                                                                             MatchStringCriteria::displayName()));
}

TandrilObjectIterator RepositoryReader::findBlocksByNameOrDescription(const std::string& pattern,
                                                                    const TandrilObject& object,
                                                                    SearchOptions::RegExp regExp,
                                                                    SearchOptions::WholeWord wholeWord,
                                                                    SearchOptions::MatchCase matchCase)
{
    static const StringId description("description");
    return TandrilObjectSearchIterator::filter(
        getDepthFirstIterator(object),
        std::make_unique<EitherCriteria>(
            std::make_unique<MatchStringCriteria>(pattern, regExp, wholeWord, matchCase,
                                                  MatchStringCriteria::displayName()),
            std::make_unique<MatchStringCriteria>(pattern, regExp, wholeWord, matchCase, description)));
}

std::shared_ptr<RepositoryReader> RepositoryReader::open(const std::string& directory)
{
    return std::make_shared<XMLRepositoryReader>(directory, RepositoryReport::create());
}

} // namespace LibraryBrowser

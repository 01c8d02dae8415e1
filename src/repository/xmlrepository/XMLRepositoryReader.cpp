#include "repository/xmlrepository/XMLRepositoryReader.h"

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "model/Model.h"
#include "repository/Library.h"
#include "repository/search/SearchIndex.h"
#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/LibraryComparison.h"
#include "repository/xmlrepository/PaletteChildren.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/StoreDamage.h"
#include "repository/xmlrepository/StoredDataCheck.h"

#include <algorithm>

namespace LibraryBrowser {

XMLRepositoryReader::XMLRepositoryReader(std::string directory)
    : XMLRepositoryReader(std::move(directory), RepositoryReport::create())
{
}

XMLRepositoryReader::XMLRepositoryReader(std::string directory, RepositoryReportPtr report)
    : XMLRepositoryReader(std::move(directory), std::move(report), nullptr)
{
}

XMLRepositoryReader::XMLRepositoryReader(std::string directory, RepositoryReportPtr report,
                                         RepositoryReader* outerReader)
    : m_directory(std::move(directory)),
      m_report(report ? std::move(report) : RepositoryReport::create()),
      m_cache(std::make_unique<XMLRepositoryReaderCache>(m_directory, m_report, outerReader ? outerReader : this))
{
}

bool XMLRepositoryReader::exists()
{
    return m_cache->getTopLevelModel() != nullptr;
}

LibraryImpl* XMLRepositoryReader::storedProduct(const TandrilObject& product)
{
    const Library library = product.toLibrary();
    const TandrilObjectImpl* given = library.getImpl();
    if (!given || given->getIsInvalid())
        return nullptr;
    const ModelPtr topLevel = topLevelManifest();
    if (!topLevel)
        return nullptr;
    if (m_indexedModel.lock() != topLevel || m_indexedRevision != topLevel->revision()) {
        m_productIndex.clear();
        // The first valid node of a path is the one that counts.
        for (TandrilObjectImpl* node : topLevel->getNodes())
            if (auto* stored = dynamic_cast<LibraryImpl*>(node); stored && !stored->getIsInvalid())
                m_productIndex.emplace(node->getUniquePath(), stored);
        m_indexedModel = topLevel;
        m_indexedRevision = topLevel->revision();
    }
    const auto found = m_productIndex.find(product.id());
    return found == m_productIndex.end() ? nullptr : found->second;
}

std::shared_ptr<const SearchIndex> XMLRepositoryReader::getSearchIndex(const TandrilObject& product)
{
    const Library library = product.toLibrary();
    if (!library.isValid())
        return nullptr;
    const QByteArray bytes = m_cache->readOptionalManifestsEntry(library, SearchIndex::EntryName);
    if (bytes.isEmpty())
        return nullptr;
    std::string problem;
    std::optional<SearchIndex> index = SearchIndex::fromBytes(bytes, problem);
    if (!index) {
        m_report->logWarning("The search index of product " + library.getDisplayName() + " in the repository store "
                             + m_directory + " can't be used (" + problem + "). Its manifests are searched instead.");
        return nullptr;
    }
    return std::make_shared<const SearchIndex>(std::move(*index));
}

bool XMLRepositoryReader::compareLibrary(const LibraryImpl& library, bool ignoreTimestamp)
{
    const HostOperations host(m_report);
    return LibraryComparison(*m_report, m_directory, host).compareLibrary(library, ignoreTimestamp);
}

bool XMLRepositoryReader::isProductUpToDate(const TandrilObject& product, bool ignoreTimestamp)
{
    const FileStateScope files;
    LibraryImpl* node = storedProduct(product);
    if (!node)
        return false;
    // Damage an earlier read met counts as out of date, whatever the dates say.
    std::string problem = StoreDamage::noted(m_directory, node->getUniquePath().str());
    if (problem.empty()) {
        if (!isLibraryTreeUpToDate(product.toLibrary(), *node, ignoreTimestamp))
            return false;
        // A palette has no archives of its own.
        if (dynamic_cast<const PaletteImpl*>(node))
            return true;
        // Damaged data counts as out of date, so that it is generated again.
        // Archives unchanged since they were published or checked need no
        // check again: at a thousand products the checks cost more than
        // what is asked of most commands.
        const std::string archives[] = {m_directory + "/" + node->getReposIconsArchiveSpec().str(),
                                        m_directory + "/" + node->getReposManifestsArchiveSpec().str()};
        // Both verified need no look at their records again either.
        if (!StoreDamage::archiveVerified(m_directory, archives[0])
            || !StoreDamage::archiveVerified(m_directory, archives[1])) {
            problem = StoredDataCheck::productProblem(m_directory, *node);
            for (const std::string& archive : archives)
                if (problem.empty())
                    problem = StoreDamage::archiveDamage(m_directory, archive);
        }
    }
    if (!problem.empty()) {
        m_report->logWarning("The stored data of " + node->getDisplayName() + " in " + m_directory
                             + " is damaged and will be generated again: " + problem);
        StoreDamage::note(m_directory, node->getUniquePath().str(), problem);
    }
    return problem.empty();
}

bool XMLRepositoryReader::isLibraryTreeUpToDate(const Library& library, LibraryImpl& node, bool ignoreTimestamp)
{
    if (!compareLibrary(node, ignoreTimestamp))
        return false;
    if (dynamic_cast<const PaletteImpl*>(&node)) {
        // A palette is as fresh as its members, whose dates always count. A
        // palette that is reached again through its members is judged by the
        // call that is judging it already: each palette counts once.
        const std::string key = node.getUniquePath().str();
        if (std::find(m_palettesJudged.begin(), m_palettesJudged.end(), key) != m_palettesJudged.end()) {
            m_report->logWarning("Tandril:LibraryBrowser:CycleInPalette",
                                 Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_CycleInPalette,
                                                                          node.getDisplayName()));
            return true;
        }
        m_palettesJudged.push_back(key);
        bool upToDate = true;
        for (const TandrilObject& member : paletteChildren(*m_report, library, *this))
            if (!isProductUpToDate(member)) {
                upToDate = false;
                break;
            }
        m_palettesJudged.pop_back();
        return upToDate;
    }
    for (const LibraryImpl* dependency : node.getDependencies())
        if (dependency && !compareLibrary(*dependency, ignoreTimestamp))
            return false;
    return true;
}

bool XMLRepositoryReader::isLibraryUpToDate(const TandrilObject& product, const std::string& path,
                                            bool ignoreTimestamp)
{
    const LibraryImpl* node = storedProduct(product);
    if (!node)
        return false;
    for (const LibraryImpl* dependency : node->getDependencies())
        if (dependency && dependency->getPath() == path)
            return compareLibrary(*dependency, ignoreTimestamp);
    return false;
}

TandrilObjectIterator XMLRepositoryReader::getAllProductsIterator()
{
    return m_cache->getAllProductsIterator();
}

TandrilObjectIterator XMLRepositoryReader::getProductsIterator()
{
    return m_cache->getProductsIterator();
}

TandrilObjectIterator XMLRepositoryReader::getChildrenIterator(const TandrilObject& object)
{
    return m_cache->getChildrenIterator(object);
}

BlockIconPtr XMLRepositoryReader::getIcon(const TandrilObject& object)
{
    return m_cache->getIcon(object);
}

} // namespace LibraryBrowser

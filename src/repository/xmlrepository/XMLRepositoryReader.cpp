#include "repository/xmlrepository/XMLRepositoryReader.h"

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

bool XMLRepositoryReader::isProductUpToDate(const TandrilObject& product, bool)
{
    // The comparison of model files with what the manifest recorded is
    // issue 6; until then no stored product is trusted.
    m_report->log("The up-to-date check of product " + product.getDisplayName() + " in " + m_directory +
                  " is not available yet; the product counts as out of date");
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

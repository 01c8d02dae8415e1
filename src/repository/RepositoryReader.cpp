#include "repository/RepositoryReader.h"

#include "repository/xmlrepository/XMLRepositoryReader.h"

namespace LibraryBrowser {

bool RepositoryReader::isProductUpToDate(const std::string& name)
{
    const ProductRecord product = getProduct(name);
    return !product.isNull() && isProductUpToDate(*product.library, false);
}

ProductRecordList RepositoryReader::getProducts()
{
    ProductRecordList valid;
    for (const ProductRecord& record : getAllProducts())
        if (!record.library->getIsInvalid())
            valid.push_back(record);
    return valid;
}

ProductRecord RepositoryReader::getProduct(const std::string& id)
{
    std::string key = id.substr(0, id.find('/'));
    key = key.substr(0, key.find('-'));
    for (const ProductRecord& record : getProducts()) {
        const LibraryImpl& library = *record.library;
        if (library.getIsProduct() && (library.getUniquePath().str() == key || library.getDisplayPath() == key))
            return record;
    }
    return {};
}

std::shared_ptr<RepositoryReader> RepositoryReader::open(const std::string& directory)
{
    return std::make_shared<XMLRepositoryReader>(directory, RepositoryReport::create());
}

} // namespace LibraryBrowser

#include "repository/Repository.h"

#include "repository/xmlrepository/XMLRepository.h"

namespace LibraryBrowser {

std::shared_ptr<Repository> Repository::open()
{
    auto repository = std::make_shared<XMLRepository>();
    repository->updateProductsOnOpen();
    return repository;
}

std::shared_ptr<Repository> Repository::open(const std::string& writableDirectory,
                                             const std::string& shippedDirectory,
                                             const std::vector<std::string>& hostPathList)
{
    auto repository = std::make_shared<XMLRepository>(writableDirectory, shippedDirectory, hostPathList);
    repository->updateProductsOnOpen();
    return repository;
}

} // namespace LibraryBrowser

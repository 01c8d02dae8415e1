#include "repository/RepositoryWriter.h"

#include "repository/xmlrepository/XMLRepositoryWriter.h"

namespace LibraryBrowser {

std::shared_ptr<RepositoryWriter> RepositoryWriter::open(const std::string& directory)
{
    return open(directory, std::vector<std::string>());
}

std::shared_ptr<RepositoryWriter> RepositoryWriter::open(const std::string& directory,
                                                         const std::vector<std::string>& hostPathList)
{
    auto writer = std::make_shared<XMLRepositoryWriter>(directory, RepositoryReport::create(), hostPathList);
    writer->updateProducts();
    return writer;
}

} // namespace LibraryBrowser

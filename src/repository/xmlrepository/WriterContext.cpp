#include "repository/xmlrepository/WriterContext.h"

#include "repository/xmlrepository/TempDirectories.h"

namespace LibraryBrowser {

std::string WriterContext::tempDirectory() const
{
    return LibraryBrowser::tempDirectory(*report, writerNumber);
}

void WriterContext::removeTempDirectory() const
{
    LibraryBrowser::removeTempDirectory(*report, writerNumber);
}

} // namespace LibraryBrowser

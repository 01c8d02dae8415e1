#pragma once

#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/GenerationState.h"
#include "repository/xmlrepository/HostOperations.h"

#include <cstdint>
#include <string>

namespace LibraryBrowser {

// What the parts of a writer share: its report, its store directory, the
// number that names its temporary directory, the host and the state of the
// generation in progress.
class WriterContext {
public:
    WriterContext(RepositoryReportPtr report, std::string repositoryDirectory, int writerNumber)
        : report(std::move(report)), repositoryDirectory(std::move(repositoryDirectory)),
          writerNumber(writerNumber), host(this->report)
    {
    }

    // The writer's private working directory, made on demand.
    std::string tempDirectory() const;
    void removeTempDirectory() const;

    RepositoryReportPtr report;
    std::string repositoryDirectory;
    int writerNumber;
    HostOperations host;
    GenerationState state;
    // When the generation of the product in hand started, in seconds since
    // the epoch; 0 before the first. Recorded as the product's lastModified.
    std::int64_t generationStarted = 0;
};

} // namespace LibraryBrowser

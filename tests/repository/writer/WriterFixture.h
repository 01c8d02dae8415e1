#pragma once

#include "../StoreFixture.h"
#include "ScriptedLibraries.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"
#include "repository/xmlrepository/XMLRepositoryWriter.h"

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// A writer on a store of its own, over a scripted host whose products and
// libraries each test sets.
class WriterFixture : public StoreFixture {
protected:
    std::string store() const { return path("store"); }
    std::string archive(const std::string& product, const std::string& kind) const
    {
        return StoreFixture::archive(store(), product, kind);
    }

    // The products Alpha (blocks A0, A1, ...) and, where asked, Beta (B0, ...).
    void setAlphaAndBeta(int alphaBlocks, int betaBlocks = 0);
    // Generates everything with a new writer and a new report.
    void generate(GenerationMode mode = GenerationMode::Minimal);
    std::unique_ptr<XMLRepositoryReader> makeReader();
    // The entries of a product's archive.
    std::vector<std::string> entries(const std::string& product, const std::string& kind) const;
    // The names of an object's children, read through a fresh reader.
    std::vector<std::string> childNames(const std::string& id);

    static std::vector<ScriptedBlock> blocks(const std::string& prefix, int count);

    RepositoryReportPtr report = RepositoryReport::create();
    ScriptedLibraries libraries{interpreter, hostRoot()};
};

} // namespace LibraryBrowser::Testing

#pragma once

#include "model/Model.h"
#include "repository/RepositoryReport.h"
#include "repository/writer/ScriptedLibraries.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"
#include "support/Files.h"
#include "support/RecordingHost.h"
#include "support/ReportLines.h"
#include "support/ScriptedHostInterpreter.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace LibraryBrowser::Testing {

// A private world for repository tests: a host root, a preferences
// directory and a system temporary directory of their own below one
// scratch directory, a recording host environment, and an interpreter whose
// "rmdir" removes for real, as the host does, and whose products and
// libraries each test may script.
class StoreFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    std::string path(const std::string& relative) const { return scratch.path().toStdString() + "/" + relative; }
    std::string hostRoot() const { return path("root"); }
    std::string tempRoot() const { return path("tmp"); }
    // A store of the test's own; where a host keeps the shipped store, and
    // where the writable one goes.
    std::string store() const { return path("store"); }
    std::string shipped() const { return hostRoot() + "/toolbox/tandril/tandril/private/td_library_browser_repos"; }
    std::string writable() const { return path("prefs") + "/td_library_browser_repos"; }
    // What the system temporary directory holds now.
    QStringList tempEntries() const;

    // A product entry of a top-level manifest, with its archive specs.
    static LibraryImpl* addProduct(Model& model, const std::string& name, const std::string& lastModified = "",
                                   const std::string& shadowedLastModified = "");
    // The files of a store, as the repository lays them out.
    static std::string topLevelFile(const std::string& store) { return store + "/toolbox/tandril/blocks/lbtoplevelmanifest.xml"; }
    static std::string tokenFile(const std::string& store) { return store + "/toolbox/tandril/blocks/.topLevelManifestToken"; }
    static std::string archive(const std::string& store, const std::string& product, const std::string& kind)
    {
        return store + "/toolbox/" + product + "/lb_" + product + "_" + kind + "_repos.rps";
    }
    std::string archive(const std::string& product, const std::string& kind) const { return archive(store(), product, kind); }
    static void saveManifest(const Model& model, const std::string& file);

    // Records the library's model file below the host root, as it is on disk
    // now, and makes the host's lb_getLibraryData name it.
    void recordModelFile(LibraryImpl& library, const std::string& spec);
    // The product "signals" in `nodes`, both archives in store(), its model
    // file toolbox/signals/signals.tdlib.json and one dependency (a spec below
    // the host root) recorded as they are on disk now.
    LibraryImpl* addRecordedSignals(Model& nodes, const std::string& dependencySpec);

    // The writer on store(): the products Alpha (blocks A0, A1, ...) and,
    // where asked, Beta (B0, ...); a generation with a new report; a reader
    // sharing the report; an archive's entries; the names of an object's
    // children, read through a fresh reader.
    void setAlphaAndBeta(int alphaBlocks, int betaBlocks = 0);
    void generate(GenerationMode mode = GenerationMode::Minimal);
    std::shared_ptr<XMLRepositoryReader> openReader() { return std::make_shared<XMLRepositoryReader>(store(), report); }
    std::vector<std::string> entries(const std::string& product, const std::string& kind) const;
    std::vector<std::string> childNames(const std::string& id);
    static std::vector<ScriptedBlock> blocks(const std::string& prefix, int count);

    // A shipped store dated shippedDate with one product per name
    // (lastModified "shipped-1") and both archives each; the host announces
    // the same products. The repository on it, and the token line that
    // matches its manifest now.
    void makeShippedStore(std::initializer_list<const char*> names);
    XMLRepositoryPtr openRepository();
    std::string currentToken() const;
    const QDateTime shippedDate = QDateTime::fromSecsSinceEpoch(1700000000);

    QTemporaryDir scratch;
    RecordingEnvironment* environment = nullptr;
    ScriptedHostInterpreter interpreter;
    ScriptedLibraries libraries{interpreter, hostRoot()};
    RepositoryReportPtr report = RepositoryReport::create();

private:
    std::map<std::string, std::string> m_modelFiles;
    QByteArray m_savedTmpDir;
    bool m_hadTmpDir = false;
};

} // namespace LibraryBrowser::Testing

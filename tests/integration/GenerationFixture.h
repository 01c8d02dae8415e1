#pragma once

#include "EmbeddedHost.h"
#include "repository/TandrilObjectIterator.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"
#include "repository/xmlrepository/XMLRepositoryWriter.h"
#include "support/ReportLines.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// Objects of a stored product tree, by kind.
struct TreeCounts {
    int blocks = 0;
    int subsystems = 0;
    int references = 0;
    int icons = 0;
    bool operator==(const TreeCounts& o) const
    {
        return blocks == o.blocks && subsystems == o.subsystems && references == o.references;
    }
};

// Generation against the real embedded host, on a private copy of the
// example root, into a store directory of its own.
class GenerationFixture : public ::testing::Test {
protected:
    void SetUp() override;
    // Whether the copy of the example root gets this file (relative to the
    // root); all do unless a suite wants a smaller root.
    virtual bool copiesRootFile(const QString&) const { return true; }
    // Adds files to the root copy before the host first looks at its path.
    virtual void addRootFiles() {}

    std::string root() const { return m_root.path().toStdString(); }
    std::string store() const { return m_store.path().toStdString(); }
    std::string preferences() const { return m_prefs.path().toStdString(); }
    std::string libraryFile(const std::string& product) const
    {
        return root() + "/toolbox/" + (product == "tandril" ? "tandril/blocks" : product) + "/" + product + ".tdlib.json";
    }

    // A new writer on the store, sharing the fixture's report.
    std::unique_ptr<XMLRepositoryWriter> makeWriter() { return std::make_unique<XMLRepositoryWriter>(store(), report); }
    // Generates the whole store with a fresh writer and a fresh report.
    void generate(GenerationMode mode = GenerationMode::Minimal);
    // A fresh reader of the store.
    std::unique_ptr<XMLRepositoryReader> makeReader()
    {
        return std::make_unique<XMLRepositoryReader>(store(), RepositoryReport::create());
    }

    // The paths of the objects of a walk, in its order or sorted; of the
    // products the store lists.
    static std::vector<std::string> paths(TandrilObjectIterator it, bool sorted = false);
    static std::vector<std::string> productPaths(XMLRepositoryReader& reader) { return paths(reader.getProductsIterator()); }
    // What a library file declares, references not followed.
    TreeCounts declaredCounts(const std::string& product) const;
    // What the store gives back for a product, walked through a reader.
    TreeCounts storedCounts(XMLRepositoryReader& reader, const std::string& product) const;

    // Each archive of the store with its checksum and modification time.
    std::map<std::string, std::string> archiveStamps() const;
    std::string archiveOf(const std::string& product, const char* kind) const
    {
        return store() + "/" + product + "/lb_" + product + "_" + kind + "_repos.rps";
    }

    bool logHas(const std::string& text) const { return logged(*report, text); }
    int logCount(const std::string& text) const { return loggedCount(*report, text); }
    std::string logText() const;
    // Rewrites a file of the root copy, dated a minute ahead: every `from`
    // becomes `to`.
    void editRootFile(const std::string& relative, const std::string& from, const std::string& to) const;
    void writeRootFile(const std::string& relative, const QByteArray& bytes) const;

    RepositoryReportPtr report = RepositoryReport::create();

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
    QTemporaryDir m_store;
    // Last, so that it goes first, before the directories it works in.
    std::unique_ptr<Host::EmbeddedHost> m_host;
};

} // namespace LibraryBrowser::Testing

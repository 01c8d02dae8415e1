#pragma once

#include "model/Model.h"
#include "repository/RepositoryReport.h"
#include "support/RecordingHost.h"
#include "support/ScriptedHostInterpreter.h"

#include <QByteArray>
#include <QDateTime>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

namespace LibraryBrowser::Testing {

// A private world for repository tests: a host root, a preferences
// directory and a system temporary directory of their own below one
// scratch directory, a recording host environment, and an interpreter whose
// "rmdir" removes for real, as the host does.
class StoreFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    std::string path(const std::string& relative) const;
    std::string hostRoot() const { return path("root"); }
    std::string preferences() const { return path("prefs"); }
    std::string tempRoot() const { return path("tmp"); }
    // What the system temporary directory holds now.
    QStringList tempEntries() const;

    static void writeFile(const std::string& file, const QByteArray& bytes);
    static QByteArray readFile(const std::string& file);
    static bool exists(const std::string& file);
    static void setModified(const std::string& file, const QDateTime& time);

    // A product entry of a top-level manifest, with its archive specs.
    static LibraryImpl* addProduct(Model& model, const std::string& name, const std::string& lastModified = "",
                                   const std::string& shadowedLastModified = "");
    // The top-level manifest of a store, as the repository lays it out.
    static std::string topLevelFile(const std::string& store);
    static std::string tokenFile(const std::string& store);
    static void saveManifest(const Model& model, const std::string& file);

    // Whether a log line of the report contains the text.
    static bool logged(const RepositoryReport& report, const std::string& text);
    static std::vector<std::string> errorMessages(const RepositoryReport& report);

    QTemporaryDir scratch;
    RecordingEnvironment* environment = nullptr;
    ScriptedHostInterpreter interpreter;

private:
    QByteArray m_savedTmpDir;
    bool m_hadTmpDir = false;
};

} // namespace LibraryBrowser::Testing

#pragma once

#include "EmbeddedHost.h"
#include "repository/Repository.h"

#include <QTemporaryDir>

#include <memory>
#include <string>

namespace LibraryBrowser::Testing {

// The embedded host on a private copy of the example root, with the message
// catalogue loaded and a repository opened on it: what a page reads from.
class ExampleRootSession {
public:
    ExampleRootSession();
    // On a copy of another root.
    explicit ExampleRootSession(const QString& sourceRoot);
    ~ExampleRootSession();
    // On a root of synthetic products of plain blocks named "Block 0" on;
    // fails the test and gives none when the root can't be written.
    static std::unique_ptr<ExampleRootSession> synthetic(int products, int blocksPerProduct);

    Repository& repository() { return *m_repository; }
    const RepositoryPtr& repositoryPtr() const { return m_repository; }
    std::string root() const { return m_root.path().toStdString(); }
    Host::EmbeddedHost& host() { return *m_host; }
    // The object of a unique path; fails the test when there is none.
    TandrilObject object(const std::string& path);

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
    std::unique_ptr<Host::EmbeddedHost> m_host;
    RepositoryPtr m_repository;
};

} // namespace LibraryBrowser::Testing

#pragma once

#include "repository/Repository.h"

#include <QString>

#include <string>
#include <vector>

class QJsonObject;

namespace LibraryBrowser::Host {
class EmbeddedHost;
}

namespace LibraryBrowser::Tdlb {

// What a command works with: the repository, opened on first use so that
// commands that need none never synchronise the stores, and the two output
// streams. Results go to standard output, diagnostics to standard error.
class CommandContext {
public:
    explicit CommandContext(QString commandName, bool verbose);
    ~CommandContext();
    CommandContext(const CommandContext&) = delete;
    CommandContext& operator=(const CommandContext&) = delete;

    Repository& repository();
    // Lets the repository go; the module must still be running.
    void closeRepository();

    // The host the module runs in, for the commands that show its windows.
    Host::EmbeddedHost& host() const { return *m_host; }
    void setHost(Host::EmbeddedHost* host) { m_host = host; }

    bool verbose() const { return m_verbose; }
    // Standard output is a terminal: progress is worth showing.
    bool interactive() const;

    void print(const QString& text) const;
    // For text already in UTF-8, as the repository gives it.
    void printUtf8(const std::string& text) const;
    void printJson(const QJsonObject& document) const;
    // Writes "tdlb COMMAND: message" on standard error; gives Failure.
    int fail(const QString& message) const;
    // The same with a pointer to the help; gives UsageError.
    int usageError(const QString& message) const;

    // Whether the repository's report holds an error, now or earlier in the
    // run: the writer clears the flag after each product, the log keeps it.
    bool reportHasErrors() const;
    // Whether a read found the store changed by another process and could
    // not read it whole.
    bool readWasIncomplete() const;
    // Writes the report's errors on standard error, each once.
    void printReportErrors() const;
    // Writes one line on standard error: how many errors the report holds,
    // and where to read them.
    void noteReportErrors() const;

private:
    // The report's error lines, each once, in the order they were logged.
    std::vector<std::string> reportErrorLines() const;

    QString m_commandName;
    bool m_verbose;
    RepositoryPtr m_repository;
    Host::EmbeddedHost* m_host = nullptr;
};

} // namespace LibraryBrowser::Tdlb

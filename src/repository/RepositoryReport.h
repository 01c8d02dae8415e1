#pragma once

#include "platform/HostObject.h"

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

// The one place where repository work says what happened: log lines,
// warnings and errors. A repository's reader, writer and cache share one
// report; the generation driver reads its error flag to decide how to go on.
// Host operations get it as an object argument, hence the host log sink.
class RepositoryReport : public HostLogSink {
public:
    struct Issue {
        std::string id;
        std::string message;

        bool operator==(const Issue& o) const { return id == o.id && message == o.message; }
    };
    using IssueList = std::vector<Issue>;

    static constexpr int MaximumLogLines = 1000;

    RepositoryReport() = default;
    explicit RepositoryReport(int logLevel) : m_logLevel(logLevel) {}

    static std::shared_ptr<RepositoryReport> create();

    void log(const std::string& message);
    void logWarning(const std::string& id, const std::string& message) override;
    void logWarning(const std::string& message);
    void logError(const std::string& id, const std::string& message) override;
    void logError(const std::string& message);

    bool hasError() const { return m_hasErrorFlag; }
    bool hasWarning() const { return m_hasWarningFlag; }
    void clearError();
    void clearWarning();

    const IssueList& getErrors() const { return m_errors; }
    const IssueList& getWarnings() const { return m_warnings; }
    IssueList takeErrors();
    IssueList takeWarnings();
    // The warnings taken, keeping only the first of each message text: one
    // fault met in many places is shown to the user once.
    IssueList takeUniqueWarnings();

    // A read found the store changed by another process and could not read
    // it again: what it answered may be short. Kept until the report goes;
    // the commands that read exit with a failure when it is set.
    void noteIncompleteRead() { m_incompleteRead = true; }
    bool hadIncompleteRead() const { return m_incompleteRead; }

    void logToConsoleInteractively(bool echo) { m_consoleEcho = echo; }
    bool isLoggingToConsole() const { return m_consoleEcho; }

    // Nesting depth of the work in progress; whoever nests work moves it.
    int indentation = 0;
    std::string getIndentation() const;

    int getLogLevel() const { return m_logLevel; }
    void setLogLevel(int level) { m_logLevel = level; }
    // The finished lines, oldest first, each ending in a line feed.
    const std::list<std::string>& getLog() const { return m_log; }

    // HostLogSink
    std::string hostClassName() const override { return "Repository.RepositoryReport"; }
    void logAction(const std::string& message) override { log(message); }

private:
    bool isDropped() const { return m_logLevel >= 0 && m_logLevel <= indentation; }
    void appendLine(const std::string& line);

    std::list<std::string> m_log;
    IssueList m_warnings;
    IssueList m_errors;
    bool m_consoleEcho = false;
    int m_logLevel = -1;
    bool m_hasErrorFlag = false;
    bool m_hasWarningFlag = false;
    bool m_incompleteRead = false;
};

using RepositoryReportPtr = std::shared_ptr<RepositoryReport>;

} // namespace LibraryBrowser

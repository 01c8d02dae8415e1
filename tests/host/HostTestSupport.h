#pragma once

#include "EmbeddedHost.h"

#include "platform/HostValue.h"
#include "repository/RepositoryReport.h"
#include "support/ReportLines.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser::Host::Testing {

// A host on a root of the test's choosing, with a private preferences
// directory, and shorthands for the calls the module makes. Every lb_* call
// gets the module's own report, as the module passes it.
class HostFixture {
public:
    explicit HostFixture(const QString& root, const QStringList& path = {});

    EmbeddedHost& host() { return *m_host; }
    // The error messages the report got, oldest first.
    std::vector<std::string> errors() const { return LibraryBrowser::Testing::messages(m_report->getErrors()); }
    std::vector<std::string> warnings() const { return LibraryBrowser::Testing::messages(m_report->getWarnings()); }
    void clearErrors() { m_report->takeErrors(); }

    HostInterpreter::CallResult tdprivate(const std::string& operation, int outputs, std::vector<HostValue> rest);
    // A host command as a script gives it.
    HostInterpreter::CallResult run(const std::string& command, std::vector<HostValue> inputs, int outputs = 0)
    {
        return m_host->callWithTrap(command, outputs, inputs);
    }
    // lb_getChildrenHandles by path or handle; empty on failure.
    std::vector<double> children(const HostValue& of);
    std::vector<double> children(const std::string& path) { return children(HostValue::string(path)); }
    // The six outputs of lb_getBlockData; empty on failure.
    std::vector<HostValue> blockData(double handle);
    // The handle of the child with the given name (as lb_getBlockData gives it).
    double childNamed(const std::string& parentPath, const std::string& name);

private:
    QTemporaryDir m_preferences;
    RepositoryReportPtr m_report = RepositoryReport::create();
    std::unique_ptr<EmbeddedHost> m_host;
};

// A copy of the example root in a temporary directory, for tests that
// change or break files.
class RootCopy {
public:
    RootCopy();
    const QString& path() const { return m_path; }
    QString file(const QString& relative) const { return m_path + QLatin1Char('/') + relative; }
    void write(const QString& relative, const QByteArray& bytes) const;

private:
    QTemporaryDir m_directory;
    QString m_path;
};

// The library file form of a list of blocks given as JSON text.
QByteArray libraryJson(const std::string& name, const std::string& blocksJson);
// The same with one block per line, the first on line 6.
QByteArray libraryOf(const std::string& name, const std::vector<std::string>& blocks);

inline HostValue str(const std::string& text) { return HostValue::string(text); }
inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

} // namespace LibraryBrowser::Host::Testing

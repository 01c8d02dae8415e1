#pragma once

#include "EmbeddedHost.h"

#include "platform/HostObject.h"
#include "platform/HostValue.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser::Host::Testing {

// The report the module passes to every lb_* call, keeping what it is told.
class RecordingReport : public HostLogSink {
public:
    std::string hostClassName() const override { return "Repository.RepositoryReport"; }
    void logAction(const std::string& message) override { actions.push_back(message); }
    void logWarning(const std::string& id, const std::string& message) override;
    void logError(const std::string& id, const std::string& message) override;

    std::vector<std::string> actions;
    std::vector<std::string> warnings;
    std::vector<std::string> errors;
    std::vector<std::string> errorIds;
};

// A host on a root of the test's choosing, with a private preferences
// directory, and shorthands for the calls the module makes.
class HostFixture {
public:
    explicit HostFixture(const QString& root, const QStringList& path = {});

    EmbeddedHost& host() { return *m_host; }
    RecordingReport& report() { return *m_report; }
    HostValue reportValue() const { return HostValue::object(m_report); }

    HostInterpreter::CallResult tdprivate(const std::string& operation, int outputs, std::vector<HostValue> rest);
    // lb_getChildrenHandles by path or handle; empty on failure.
    std::vector<double> children(const HostValue& of);
    std::vector<double> children(const std::string& path) { return children(HostValue::string(path)); }
    // The six outputs of lb_getBlockData; empty on failure.
    std::vector<HostValue> blockData(double handle);
    // The handle of the child with the given name (as lb_getBlockData gives it).
    double childNamed(const std::string& parentPath, const std::string& name);

private:
    QTemporaryDir m_preferences;
    std::shared_ptr<RecordingReport> m_report = std::make_shared<RecordingReport>();
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
    // Every file below the root with its contents, to show nothing changed.
    std::map<QString, QByteArray> snapshot() const;

private:
    QTemporaryDir m_directory;
    QString m_path;
};

// The library file form of a list of blocks given as JSON text.
QByteArray libraryJson(const std::string& name, const std::string& blocksJson);

} // namespace LibraryBrowser::Host::Testing

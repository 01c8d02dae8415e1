#include "HostTestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace LibraryBrowser::Host::Testing {

void RecordingReport::logWarning(const std::string& id, const std::string& message)
{
    warnings.push_back(id + " " + message);
}

void RecordingReport::logError(const std::string& id, const std::string& message)
{
    errorIds.push_back(id);
    errors.push_back(message);
}

HostFixture::HostFixture(const QString& root, const QStringList& path)
{
    HostOptions options;
    options.root = root;
    options.preferencesDirectory = m_preferences.path();
    options.path = path;
    m_host = std::make_unique<EmbeddedHost>(options);
}

HostInterpreter::CallResult HostFixture::tdprivate(const std::string& operation, int outputs,
                                                   std::vector<HostValue> rest)
{
    std::vector<HostValue> inputs{HostValue::string(operation), reportValue()};
    inputs.insert(inputs.end(), rest.begin(), rest.end());
    return m_host->callWithTrap("tdprivate", outputs, inputs);
}

std::vector<double> HostFixture::children(const HostValue& of)
{
    const auto result = tdprivate("lb_getChildrenHandles", 1, {of});
    return result.ok ? result.outputs.at(0).doubles() : std::vector<double>{};
}

std::vector<HostValue> HostFixture::blockData(double handle)
{
    const auto result = tdprivate("lb_getBlockData", 6, {HostValue::doubleScalar(handle)});
    return result.ok ? result.outputs : std::vector<HostValue>{};
}

double HostFixture::childNamed(const std::string& parentPath, const std::string& name)
{
    for (double handle : children(parentPath)) {
        const auto data = blockData(handle);
        if (!data.empty() && data[0].toString() == name)
            return handle;
    }
    return 0;
}

RootCopy::RootCopy() : m_path(m_directory.path() + QStringLiteral("/root"))
{
    const QString source = HostOptions::bundledRoot();
    QDirIterator it(source, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString from = it.next();
        const QString to = m_path + QLatin1Char('/') + QDir(source).relativeFilePath(from);
        QDir().mkpath(QFileInfo(to).absolutePath());
        QFile::copy(from, to);
    }
}

void RootCopy::write(const QString& relative, const QByteArray& bytes) const
{
    const QString target = file(relative);
    QDir().mkpath(QFileInfo(target).absolutePath());
    QFile out(target);
    if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
        out.write(bytes);
}

std::map<QString, QByteArray> RootCopy::snapshot() const
{
    std::map<QString, QByteArray> files;
    QDirIterator it(m_path, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        files[file.fileName()] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
    }
    return files;
}

QByteArray libraryJson(const std::string& name, const std::string& blocksJson)
{
    return QByteArray::fromStdString("{\n  \"format\": \"tandril-library\",\n  \"version\": 1,\n  \"name\": \"" + name
                                     + "\",\n  \"blocks\": " + blocksJson + "\n}\n");
}

} // namespace LibraryBrowser::Host::Testing

#include "HostTestSupport.h"

#include "support/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace LibraryBrowser::Host::Testing {

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
    std::vector<HostValue> inputs{HostValue::string(operation), HostValue::object(m_report)};
    inputs.insert(inputs.end(), rest.begin(), rest.end());
    return m_host->callWithTrap("tdprivate", outputs, inputs);
}

std::vector<std::string> HostFixture::errors() const
{
    std::vector<std::string> messages;
    for (const RepositoryReport::Issue& issue : m_report->getErrors())
        messages.push_back(issue.message);
    return messages;
}

std::vector<std::string> HostFixture::warnings() const
{
    std::vector<std::string> messages;
    for (const RepositoryReport::Issue& issue : m_report->getWarnings())
        messages.push_back(issue.message);
    return messages;
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
    LibraryBrowser::Testing::writeFile(file(relative).toStdString(), bytes);
}

void takeCensus(HostFixture& fixture, const std::string& path, Census& census, int depth)
{
    for (double handle : fixture.children(path)) {
        const auto data = fixture.blockData(handle);
        if (data.size() != 6) {
            census.problems.push_back("no data below " + path);
            continue;
        }
        const std::string name = data[0].toString();
        ++census.blocks;
        census.deepest = std::max(census.deepest, depth);
        census.slash = census.slash || name.find("//") != std::string::npos;
        census.lineFeed = census.lineFeed || name.find('\n') != std::string::npos;
        census.nonAscii = census.nonAscii || std::any_of(name.begin(), name.end(), [](char c) { return c & 0x80; });
        if (data[1].toString().size() < 20)
            census.problems.push_back("thin description: " + path + "/" + name);
        const std::string type = data[3].toString();
        if (type == "SubSystem") {
            takeCensus(fixture, path + "/" + name, census, depth + 1);
        } else if (type == "LibraryRef") {
            ++census.references;
            census.referencedLibraries.insert(data[4].toString());
            if (fixture.children(data[5].toString()).empty())
                census.problems.push_back("reference to nothing: " + name);
        }
    }
}

QByteArray libraryJson(const std::string& name, const std::string& blocksJson)
{
    return QByteArray::fromStdString("{\n  \"format\": \"tandril-library\",\n  \"version\": 1,\n  \"name\": \"" + name
                                     + "\",\n  \"blocks\": " + blocksJson + "\n}\n");
}

} // namespace LibraryBrowser::Host::Testing

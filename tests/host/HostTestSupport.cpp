#include "HostTestSupport.h"

#include "support/Files.h"

namespace LibraryBrowser::Host::Testing {

HostFixture::HostFixture(const QString& root, const QStringList& path)
{
    HostOptions options;
    std::tie(options.root, options.preferencesDirectory, options.path) = std::make_tuple(root, m_preferences.path(), path);
    m_host = std::make_unique<EmbeddedHost>(options);
}

HostInterpreter::CallResult HostFixture::tdprivate(const std::string& operation, int outputs,
                                                   std::vector<HostValue> rest)
{
    rest.insert(rest.begin(), {HostValue::string(operation), HostValue::object(m_report)});
    return m_host->callWithTrap("tdprivate", outputs, rest);
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
    for (double handle : children(parentPath))
        if (const auto data = blockData(handle); !data.empty() && data[0].toString() == name)
            return handle;
    return 0;
}

RootCopy::RootCopy() : m_path(m_directory.path() + QStringLiteral("/root"))
{
    for (const auto& [relative, bytes] : LibraryBrowser::Testing::snapshot(HostOptions::bundledRoot().toStdString()))
        write(relative, bytes);
}

void RootCopy::write(const QString& relative, const QByteArray& bytes) const
{
    LibraryBrowser::Testing::writeFile(file(relative).toStdString(), bytes);
}

QByteArray libraryJson(const std::string& name, const std::string& blocksJson)
{
    return QByteArray::fromStdString("{\n  \"format\": \"tandril-library\",\n  \"version\": 1,\n  \"name\": \"" + name
                                     + "\",\n  \"blocks\": " + blocksJson + "\n}\n");
}

QByteArray libraryOf(const std::string& name, const std::vector<std::string>& blocks)
{
    std::string lines;
    for (const std::string& block : blocks)
        lines += (lines.empty() ? "[\n    " : ",\n    ") + block;
    return libraryJson(name, lines + "\n  ]");
}

} // namespace LibraryBrowser::Host::Testing

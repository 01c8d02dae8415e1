#include "repository/xmlrepository/HostOperations.h"

#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <cmath>

namespace LibraryBrowser {

namespace {

std::string replaceAll(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::vector<double> handlesOf(const HostInterpreter::CallResult& result)
{
    if (!result.ok || result.outputs.empty() || !result.outputs.front().isDouble())
        return {};
    return result.outputs.front().doubles();
}

std::vector<std::string> stringsOf(const HostValue& value)
{
    return value.isCell() ? value.toStringList() : std::vector<std::string>();
}

bool equalsIgnoringCase(const std::string& a, const char* b)
{
    return QString::fromStdString(a).compare(QLatin1String(b), Qt::CaseInsensitive) == 0;
}

} // namespace

HostInterpreter::CallResult HostOperations::call(const char* operation, int outputCount,
                                                 std::vector<HostValue> inputs) const
{
    inputs.insert(inputs.begin(), {HostValue::string(operation), HostValue::object(m_report)});
    HostInterpreter::CallResult result = Platform::interpreter().callWithTrap("tdprivate", outputCount, inputs);
    if (result.ok && int(result.outputs.size()) < outputCount)
        result.ok = false; // an answer short of outputs is no answer
    return result;
}

ProductsData HostOperations::getTdBlocksData(const std::vector<std::string>& hostPath) const
{
    ProductsData data;
    const auto result = call("lb_getTdBlocksData", 9, {HostValue::cellOfStrings(hostPath)});
    if (!result.ok)
        return data;
    const std::vector<HostValue>& out = result.outputs;
    const std::size_t count = out[0].columns();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string type = out[6].cell(i).toString();
        const std::string name = out[0].cell(i).toString();
        ProductsData::LibraryType libraryType;
        if (equalsIgnoringCase(type, "Product")) {
            libraryType = ProductsData::LibraryType::Product;
        } else if (equalsIgnoringCase(type, "Palette")) {
            libraryType = ProductsData::LibraryType::Palette;
        } else {
            m_report->logWarning("The product " + name + " has the unknown type '" + type + "' and is left out.");
            continue;
        }
        data.productNames.push_back(name);
        data.modelFiles.push_back(out[1].cell(i).toString());
        data.reposDirectories.push_back(out[2].cell(i).toString());
        const std::vector<double>& flags = out[3].doubles();
        data.flags.push_back(i < flags.size() && flags[i] != 0.0); // NaN counts as set
        data.treeIcons.push_back(forwardSlashes(out[4].cell(i).toString()));
        data.panelIcons.push_back(forwardSlashes(out[5].cell(i).toString()));
        data.types.push_back(libraryType);
        data.children.push_back(stringsOf(out[7].cell(i)));
        std::vector<FileInfo> files;
        for (const std::string& spec : stringsOf(out[8].cell(i)))
            files.push_back({spec, std::string(), 0, 0});
        data.fileDependencies.push_back(std::move(files));
    }
    return data;
}

LibraryData HostOperations::getLibraryData(const std::string& libraryPath) const
{
    LibraryData data;
    const auto result = call("lb_getLibraryData", 3, {HostValue::string(libraryPath)});
    if (!result.ok)
        return data;
    const HostValue& spec = result.outputs[0];
    data.fileSpec = spec.isCell() ? spec.cell(0).toString() : spec.toString();
    data.size = std::int64_t(std::trunc(result.outputs[1].scalar()));
    // The date is the file's own, not the host's word for it.
    if (!data.fileSpec.empty())
        data.date = std::int32_t(
            fileDate(absolutePath(Platform::environment().root(), forwardSlashes(data.fileSpec))));
    return data;
}

std::vector<double> HostOperations::getChildrenHandles(const std::string& path) const
{
    return handlesOf(call("lb_getChildrenHandles", 1, {HostValue::string(path)}));
}

std::vector<double> HostOperations::getChildrenHandles(double handle) const
{
    return handlesOf(call("lb_getChildrenHandles", 1, {HostValue::doubleScalar(handle)}));
}

bool HostOperations::getBlockData(double handle, BlockData& data) const
{
    const auto result = call("lb_getBlockData", 6, {HostValue::doubleScalar(handle)});
    if (!result.ok)
        return false;
    const std::vector<HostValue>& out = result.outputs;
    data.name = blankLineFeeds(out[0].toString());
    data.displayName = replaceAll(data.name, "//", "/");
    data.description = out[1].toString();
    // The host gives left, top, right, bottom; the stored rectangle takes the
    // four values in the order the manifests have always held them.
    const std::vector<double>& e = out[2].doubles();
    data.position = e.size() >= 4 ? QRectF(e[1], e[0], std::abs(e[2] - e[0]), std::abs(e[3] - e[1])) : QRectF();
    data.type = out[3].toString();
    data.libraryRefName = blankLineFeeds(out[4].toString());
    data.libraryRefPath = blankLineFeeds(out[5].toString());
    return true;
}

void HostOperations::createSubSystemIcons(const std::string& path, const std::vector<std::string>& childPaths,
                                          const std::vector<std::string>& files) const
{
    call("lb_createSubSystemIcons", 0,
         {HostValue::string(path), HostValue::cellOfStrings(childPaths), HostValue::cellOfStrings(files)});
}

} // namespace LibraryBrowser

#include "ScriptedLibraries.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace LibraryBrowser::Testing {

namespace {

HostInterpreter::CallResult answer(std::vector<HostValue> outputs)
{
    HostInterpreter::CallResult result;
    result.ok = true;
    result.outputs = std::move(outputs);
    return result;
}

HostInterpreter::CallResult failure()
{
    HostInterpreter::CallResult result;
    result.ok = false;
    result.errorMessage = "no such block";
    return result;
}

HostValue cellOfCells(const std::vector<std::vector<std::string>>& lists)
{
    HostValue cells = HostValue::cellArray(1, lists.size());
    for (std::size_t i = 0; i < lists.size(); ++i)
        cells.setCell(i, HostValue::cellOfStrings(lists[i]));
    return cells;
}

std::string describe(const std::vector<ScriptedBlock>& blocks)
{
    std::string text;
    for (const ScriptedBlock& block : blocks)
        text += block.name + ":" + block.type + ":" + block.description + "{" + describe(block.children) + "}";
    return text;
}

} // namespace

ScriptedLibraries::ScriptedLibraries(ScriptedHostInterpreter& interpreter, std::string hostRoot)
    : m_root(std::move(hostRoot))
{
    interpreter.on("tdprivate:lb_getTdBlocksData", [this](int, const std::vector<HostValue>&) {
        std::vector<std::string> labels, files, directories, icons, types;
        std::vector<std::vector<std::string>> children, dependencies;
        for (const ScriptedProduct& product : m_products) {
            labels.push_back(product.label);
            files.push_back(product.file);
            directories.push_back("toolbox/" + product.file);
            icons.push_back("");
            types.push_back(product.type);
            children.push_back(product.children);
            dependencies.push_back(product.files);
        }
        return answer({HostValue::cellOfStrings(labels), HostValue::cellOfStrings(files),
                       HostValue::cellOfStrings(directories),
                       HostValue::doubleMatrix(1, labels.size(), std::vector<double>(labels.size(), 0.0)),
                       HostValue::cellOfStrings(icons), HostValue::cellOfStrings(icons),
                       HostValue::cellOfStrings(types), cellOfCells(children), cellOfCells(dependencies)});
    });
    interpreter.on("tdprivate:lb_getChildrenHandles", [this](int, const std::vector<HostValue>& inputs) {
        const HostValue& key = inputs.at(2);
        const double handle = key.isString() ? handleOfPath(key.toString()) : key.scalar();
        const auto found = m_nodes.find(handle);
        if (found == m_nodes.end())
            return failure();
        const std::vector<double>& children = found->second.children;
        return answer({HostValue::doubleMatrix(1, children.size(), children)});
    });
    interpreter.on("tdprivate:lb_getBlockData", [this](int, const std::vector<HostValue>& inputs) {
        const auto found = m_nodes.find(inputs.at(2).scalar());
        if (found == m_nodes.end() || !found->second.block)
            return failure();
        const ScriptedBlock& block = *found->second.block;
        return answer({HostValue::string(block.name), HostValue::string(block.description),
                       HostValue::doubleMatrix(1, 4, {10, 20, 40, 60}), HostValue::string(block.type),
                       HostValue::string(block.targetLibrary),
                       HostValue::string(block.targetPath.empty() ? block.targetLibrary
                                                                  : block.targetLibrary + "/" + block.targetPath)});
    });
    interpreter.on("tdprivate:lb_getLibraryData", [this](int, const std::vector<HostValue>& inputs) {
        const std::string library = inputs.at(2).toString();
        if (!m_libraries.count(library))
            return failure();
        const QFileInfo file(QString::fromStdString(modelFile(library)));
        return answer({HostValue::cellOfStrings({"toolbox/" + library + ".lib"}), HostValue::doubleScalar(double(file.size())),
                       HostValue::doubleScalar(0)});
    });
    interpreter.on("tdprivate:lb_createSubSystemIcons", [](int, const std::vector<HostValue>& inputs) {
        const std::vector<std::string> paths = inputs.at(3).toStringList();
        const std::vector<std::string> files = inputs.at(4).toStringList();
        for (std::size_t i = 0; i < files.size() && i < paths.size(); ++i) {
            QFile icon(QString::fromStdString(files[i]));
            QDir().mkpath(QFileInfo(icon).absolutePath());
            if (icon.open(QIODevice::WriteOnly))
                icon.write(QByteArray::fromStdString("<svg xmlns=\"http://www.w3.org/2000/svg\"><title>" + paths[i] +
                                                     "</title></svg>"));
        }
        return answer({});
    });
}

std::string ScriptedLibraries::modelFile(const std::string& library) const
{
    return m_root + "/toolbox/" + library + ".lib";
}

void ScriptedLibraries::setProducts(std::vector<ScriptedProduct> products)
{
    m_products = std::move(products);
}

void ScriptedLibraries::setLibrary(const std::string& library, std::vector<ScriptedBlock> blocks)
{
    m_libraries[library] = std::move(blocks);
    QFile file(QString::fromStdString(modelFile(library)));
    QDir().mkpath(QFileInfo(file).absolutePath());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(QByteArray::fromStdString(describe(m_libraries[library])));
        file.flush();
        // Dates count in whole seconds: each edit gets a minute of its own,
        // as a user's later edit would.
        file.setFileTime(QDateTime::currentDateTime().addSecs(60 * ++m_edits), QFileDevice::FileModificationTime);
    }
    rebuildHandles();
}

void ScriptedLibraries::rebuildHandles()
{
    // New handles for everything, as a host gives for a file read again.
    m_nodes.clear();
    m_byPath.clear();
    for (const auto& [library, blocks] : m_libraries) {
        const double handle = m_nextHandle++;
        m_nodes[handle] = Node{library, nullptr, {}};
        m_byPath[library] = handle;
        addChildren(handle, library, blocks);
    }
}

void ScriptedLibraries::addChildren(double parent, const std::string& path, const std::vector<ScriptedBlock>& blocks)
{
    for (const ScriptedBlock& block : blocks) {
        const double handle = m_nextHandle++;
        const std::string childPath = path + "/" + block.name;
        m_nodes[handle] = Node{childPath, &block, {}};
        m_byPath[childPath] = handle;
        m_nodes[parent].children.push_back(handle);
        if (block.type == "SubSystem")
            addChildren(handle, childPath, block.children);
    }
}

double ScriptedLibraries::handleOfPath(const std::string& path) const
{
    const auto found = m_byPath.find(path);
    if (found == m_byPath.end())
        return -1;
    const Node& node = m_nodes.at(found->second);
    // A reference lists the children of what it references.
    if (node.block && node.block->type == "LibraryRef") {
        const std::string target =
            node.block->targetPath.empty() ? node.block->targetLibrary
                                           : node.block->targetLibrary + "/" + node.block->targetPath;
        return handleOfPath(target);
    }
    return found->second;
}

} // namespace LibraryBrowser::Testing

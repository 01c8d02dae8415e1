#include "ScriptedLibraries.h"

#include "support/Files.h"

#include <QDateTime>
#include <QFileInfo>

#include <optional>

namespace LibraryBrowser::Testing {

namespace {

// Outputs, or a failure where there are none.
HostInterpreter::CallResult answer(std::optional<std::vector<HostValue>> outputs)
{
    return outputs ? HostInterpreter::CallResult{true, *outputs} : HostInterpreter::CallResult{false, {}, "no such block"};
}

HostValue cellOfCells(const std::vector<std::vector<std::string>>& lists)
{
    HostValue cells = HostValue::cellArray(1, lists.size());
    for (std::size_t i = 0; i < lists.size(); ++i)
        cells.setCell(i, HostValue::cellOfStrings(lists[i]));
    return cells;
}

// What a reference points at, as the host names it.
std::string target(const ScriptedBlock& block)
{
    return block.targetPath.empty() ? block.targetLibrary : block.targetLibrary + "/" + block.targetPath;
}

} // namespace

ScriptedLibraries::ScriptedLibraries(ScriptedHostInterpreter& interpreter, std::string hostRoot)
    : m_root(std::move(hostRoot))
{
    interpreter.on("tdprivate:lb_getTdBlocksData", [this](int, const std::vector<HostValue>&) {
        std::vector<std::string> labels, files, directories, types;
        std::vector<std::vector<std::string>> children, dependencies;
        for (const ScriptedProduct& product : m_products) {
            labels.push_back(product.label);
            files.push_back(product.file);
            directories.push_back("toolbox/" + product.file);
            types.push_back(product.type);
            children.push_back(product.children);
            dependencies.push_back(product.files);
        }
        const HostValue noIcons = HostValue::cellOfStrings(std::vector<std::string>(labels.size()));
        return answer(std::vector{HostValue::cellOfStrings(labels), HostValue::cellOfStrings(files),
                       HostValue::cellOfStrings(directories),
                       HostValue::doubleMatrix(1, labels.size(), std::vector<double>(labels.size(), 0.0)), noIcons,
                       noIcons, HostValue::cellOfStrings(types), cellOfCells(children), cellOfCells(dependencies)});
    });
    interpreter.on("tdprivate:lb_getChildrenHandles", [this](int, const std::vector<HostValue>& inputs) {
        const HostValue& key = inputs.at(2);
        const auto found = m_nodes.find(key.isString() ? handleOfPath(key.toString()) : key.scalar());
        if (found == m_nodes.end())
            return answer(std::nullopt);
        const std::vector<double>& children = found->second.children;
        return answer(std::vector{HostValue::doubleMatrix(1, children.size(), children)});
    });
    interpreter.on("tdprivate:lb_getBlockData", [this](int, const std::vector<HostValue>& inputs) {
        const auto found = m_nodes.find(inputs.at(2).scalar());
        if (found == m_nodes.end() || !found->second.block)
            return answer(std::nullopt);
        const ScriptedBlock& block = *found->second.block;
        return answer(std::vector{HostValue::string(block.name), HostValue::string(block.description),
                       HostValue::doubleMatrix(1, 4, {10, 20, 40, 60}), HostValue::string(block.type),
                       HostValue::string(block.targetLibrary), HostValue::string(target(block))});
    });
    interpreter.on("tdprivate:lb_getLibraryData", [this](int, const std::vector<HostValue>& inputs) {
        const std::string library = inputs.at(2).toString();
        if (!m_libraries.count(library))
            return answer(std::nullopt);
        const QFileInfo file(QString::fromStdString(modelFile(library)));
        return answer(std::vector{HostValue::cellOfStrings({"toolbox/" + library + ".lib"}),
                                  HostValue::doubleScalar(double(file.size())), HostValue::doubleScalar(0)});
    });
    interpreter.on("tdprivate:lb_createSubSystemIcons", [this](int, const std::vector<HostValue>& inputs) {
        const std::vector<std::string> paths = inputs.at(3).toStringList();
        const std::vector<std::string> files = inputs.at(4).toStringList();
        for (std::size_t i = 0; i < files.size() && i < paths.size(); ++i) {
            const auto found = m_nodes.find(handleOfPath(paths[i]));
            const int padding = found != m_nodes.end() && found->second.block ? found->second.block->iconPadding : 0;
            const std::string filler = padding > 0 ? "<desc>" + std::string(padding, '.') + "</desc>" : "";
            writeFile(files[i], QByteArray::fromStdString("<svg xmlns=\"http://www.w3.org/2000/svg\"><title>" +
                                                          paths[i] + "</title>" + filler + "</svg>"));
        }
        return answer(std::vector<HostValue>());
    });
}

std::string ScriptedLibraries::modelFile(const std::string& library) const
{
    return m_root + "/toolbox/" + library + ".lib";
}

void ScriptedLibraries::setLibrary(const std::string& library, std::vector<ScriptedBlock> blocks)
{
    m_libraries[library] = std::move(blocks);
    // Each edit changes the content, and gets a minute of its own: dates
    // count in whole seconds, and a user's later edit would come later.
    ++m_edits;
    writeFile(modelFile(library), QByteArray::fromStdString("edit " + std::to_string(m_edits) + " of " + library));
    setModified(modelFile(library), QDateTime::currentDateTime().addSecs(60 * m_edits));
    rebuildHandles();
}

void ScriptedLibraries::rebuildHandles()
{
    // New handles for everything, as a host gives for a file read again.
    m_nodes.clear();
    m_byPath.clear();
    for (const auto& [library, blocks] : m_libraries) {
        const double handle = m_nextHandle++;
        m_nodes[handle] = Node{nullptr, {}};
        m_byPath[library] = handle;
        addChildren(handle, library, blocks);
    }
}

void ScriptedLibraries::addChildren(double parent, const std::string& path, const std::vector<ScriptedBlock>& blocks)
{
    for (const ScriptedBlock& block : blocks) {
        const double handle = m_nextHandle++;
        const std::string childPath = path + "/" + block.name;
        m_nodes[handle] = Node{&block, {}};
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
    if (node.block && node.block->type == "LibraryRef")
        return handleOfPath(target(*node.block));
    return found->second;
}

} // namespace LibraryBrowser::Testing

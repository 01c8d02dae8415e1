#include "RepositoryOperations.h"

#include "BlockPath.h"
#include "DirectoryTree.h"
#include "IconRenderer.h"
#include "OpenDirectory.h"
#include "RootWalk.h"
#include "TdBlocksParser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LibraryBrowser::Host {

namespace {
constexpr const char* invalidFile = "Tandril:Host:InvalidFile";
constexpr const char* badArguments = "Tandril:Host:BadArguments";

HostValue row(std::vector<double> values)
{
    const std::size_t columns = values.size();
    return HostValue::doubleMatrix(1, columns, std::move(values));
}

// Writes the file named `name` in the directory open as `directory` (or
// named from the working directory where that is -1).
bool writeFile(int directory, const QByteArray& name, const QByteArray& bytes)
{
    const int file = ::openat(directory < 0 ? AT_FDCWD : directory, name.constData(),
                              O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    const char* at = bytes.constData();
    std::size_t left = std::size_t(bytes.size());
    while (left > 0) {
        const ssize_t count = ::write(file, at, left);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        at += count;
        left -= std::size_t(count);
    }
    return ::close(file) == 0 && left == 0;
}
} // namespace

bool RepositoryOperations::isOperation(const std::string& name)
{
    return name == "lb_getTdBlocksData" || name == "lb_getChildrenHandles" || name == "lb_getBlockData"
        || name == "lb_getLibraryData" || name == "lb_createSubSystemIcons" || name == "rmdir";
}

RepositoryOperations::CallResult RepositoryOperations::call(const std::string& operation, int outputCount,
                                                            const std::vector<HostValue>& inputs)
{
    CallArguments args("tdprivate " + operation, inputs, 1);
    if (operation == "rmdir")
        return removeDirectory(outputCount, args);
    if (operation == "lb_getTdBlocksData")
        return getTdBlocksData(outputCount, args);
    if (operation == "lb_getChildrenHandles")
        return getChildrenHandles(outputCount, args);
    if (operation == "lb_getBlockData")
        return getBlockData(outputCount, args);
    if (operation == "lb_getLibraryData")
        return getLibraryData(outputCount, args);
    return createSubSystemIcons(outputCount, args);
}

RepositoryOperations::CallResult RepositoryOperations::reportFailure(HostLogSink* report, const std::string& id,
                                                                     const std::string& message)
{
    if (report)
        report->logError(id, message);
    return CallArguments::failure(id, message);
}

RepositoryOperations::CallResult RepositoryOperations::getTdBlocksData(int outputCount, CallArguments& args)
{
    HostLogSink* report = args.report(0);
    std::vector<std::string> given;
    if (args.has(1) && !args.strings(1, given))
        return reportFailure(report, badArguments, args.error());
    QStringList directories;
    for (const std::string& directory : given)
        directories << QDir::cleanPath(QDir(QString::fromStdString(directory)).absolutePath());
    if (directories.isEmpty())
        directories = m_path.directories();

    // Files below the root are looked up from it, opened once for the call.
    const OpenDirectory root(RootWalk::absoluteRoot(m_path.root()));
    std::vector<TdBlocksCache::Entries> read;
    std::size_t count = 0;
    for (const QString& directory : directories) {
        const QString file = directory + QLatin1Char('/') + QLatin1String(TdBlocksParser::fileName);
        FileIssue issue;
        std::vector<FileIssue> refused;
        bool parsed = false;
        TdBlocksCache::Entries entries = m_tdBlocks.read(file, m_path.root(), root, parsed, issue, refused);
        if (!entries)
            continue;
        // A bad file leaves out its own entries only: failing the whole call
        // would make every product look uninstalled.
        if (!parsed && report)
            report->logError(invalidFile, issue.toString());
        for (const FileIssue& name : refused)
            if (report)
                report->logWarning(invalidFile, name.toString());
        count += entries->size();
        read.push_back(std::move(entries));
    }
    m_tdBlocks.keep();

    // The answer is built in place: a generation asks for it twice, and at a
    // thousand products copies of it cost as much as the look-ups.
    enum Column { Name, Library, Repository, Flag, TreeIcon, PanelIcon, Type, Children, Dependencies, Columns };
    std::vector<HostValue> outputs;
    outputs.reserve(Columns);
    for (int column = 0; column < Columns; ++column)
        outputs.push_back(HostValue::cellArray(count == 0 ? 0 : 1, count));
    std::vector<double> flags;
    flags.reserve(count);
    std::size_t i = 0;
    for (const TdBlocksCache::Entries& entries : read) {
        for (const TdBlocksEntry& entry : *entries) {
            outputs[Name].setCell(i, HostValue::string(entry.productName));
            outputs[Library].setCell(i, HostValue::string(entry.library));
            outputs[Repository].setCell(i, HostValue::string(entry.repositoryDirectory));
            flags.push_back(entry.flag ? 1.0 : 0.0);
            outputs[TreeIcon].setCell(i, HostValue::string(entry.treeIcon));
            outputs[PanelIcon].setCell(i, HostValue::string(entry.panelIcon));
            outputs[Type].setCell(i, HostValue::string(entry.type == EntryType::Palette ? "Palette" : "Product"));
            outputs[Children].setCell(i, HostValue::cellOfStrings(entry.children));
            outputs[Dependencies].setCell(i, HostValue::cellOfStrings(entry.dependencies));
            ++i;
        }
    }
    outputs[Flag] = row(std::move(flags));
    return CallArguments::success("tdprivate lb_getTdBlocksData", outputCount, std::move(outputs));
}

BlockTree::NodeId RepositoryOperations::nodeOfInput(CallArguments& args, std::size_t index, FileIssue& issue)
{
    if (args.has(index) && args.value(index).isDouble()) {
        double handle = 0;
        if (!args.scalar(index, handle)) {
            issue.message = QString::fromStdString(args.error());
            return BlockTree::none;
        }
        const BlockTree::NodeId id = m_tree.nodeOfHandle(handle);
        if (id == BlockTree::none)
            issue.message = QStringLiteral("%1 is not a block handle of this host").arg(handle);
        return id;
    }
    std::string path;
    if (!args.string(index, path)) {
        issue.message = QString::fromStdString(args.error());
        return BlockTree::none;
    }
    return m_tree.nodeAtPath(path, issue);
}

RepositoryOperations::CallResult RepositoryOperations::getChildrenHandles(int outputCount, CallArguments& args)
{
    HostLogSink* report = args.report(0);
    FileIssue issue;
    const BlockTree::NodeId id = nodeOfInput(args, 1, issue);
    std::vector<BlockTree::NodeId> children;
    if (id == BlockTree::none || !m_tree.children(id, children, issue))
        return reportFailure(report, invalidFile, "lb_getChildrenHandles: " + issue.toString());
    std::vector<double> handles;
    handles.reserve(children.size());
    for (BlockTree::NodeId child : children)
        handles.push_back(BlockTree::handleOf(child));
    return CallArguments::success("tdprivate lb_getChildrenHandles", outputCount, {row(handles)});
}

RepositoryOperations::CallResult RepositoryOperations::getBlockData(int outputCount, CallArguments& args)
{
    HostLogSink* report = args.report(0);
    double handle = 0;
    if (!args.scalar(1, handle))
        return reportFailure(report, badArguments, args.error());
    const BlockTree::NodeId id = m_tree.nodeOfHandle(handle);
    if (id == BlockTree::none || BlockTree::isLibrary(m_tree.node(id)))
        return reportFailure(report, badArguments,
                             "lb_getBlockData: " + std::to_string(handle) + " is not a block handle of this host");
    FileIssue held;
    const BlockTree::Held record = m_tree.hold(id, held);
    if (!record)
        return reportFailure(report, invalidFile, "lb_getBlockData: " + held.toString());
    const BlockRecord& block = *record.record;
    std::string description = block.description;
    std::string referenceLibrary, referencePath;
    if (block.type == BlockType::LibraryRef) {
        FileIssue issue;
        const BlockTree::NodeId target = m_tree.resolveReference(id, issue);
        if (target == BlockTree::none)
            return reportFailure(report, invalidFile, "lb_getBlockData: " + issue.toString());
        referenceLibrary = m_tree.libraryOf(target);
        referencePath = m_tree.pathOf(target);
        if (!block.hasDescription) {
            const BlockTree::Held targetRecord = m_tree.hold(target, issue);
            if (!targetRecord)
                return reportFailure(report, invalidFile, "lb_getBlockData: " + issue.toString());
            description =
                targetRecord.record ? targetRecord.record->description : targetRecord.document->description;
        }
    }
    const BlockPosition& p = block.position;
    return CallArguments::success("tdprivate lb_getBlockData", outputCount,
                                  {HostValue::string(BlockPath::escape(block.name)), HostValue::string(description),
                                   row({p.left, p.top, p.right, p.bottom}), HostValue::string(blockTypeName(block.type)),
                                   HostValue::string(referenceLibrary), HostValue::string(referencePath)});
}

RepositoryOperations::CallResult RepositoryOperations::getLibraryData(int outputCount, CallArguments& args)
{
    HostLogSink* report = args.report(0);
    std::string path;
    if (!args.string(1, path))
        return reportFailure(report, badArguments, args.error());
    const std::string library = BlockPath::split(path).front();
    // By stat, in the look-up of the file: a date from QFileInfo goes
    // through the time zone, and the store asks for every library of every
    // product it checks.
    struct stat status;
    const QString file = m_path.findLibraryFile(library, status);
    if (file.isEmpty() || !S_ISREG(status.st_mode))
        return reportFailure(report, invalidFile,
                             "lb_getLibraryData: no library \"" + library + "\" on the path");
    HostValue fileSpec = HostValue::cellArray(1, 1);
    auto spec = m_fileSpecs.constFind(file);
    if (spec == m_fileSpecs.cend())
        spec = m_fileSpecs.insert(file, m_path.fileSpec(file));
    fileSpec.setCell(0, HostValue::string(*spec));
    std::vector<HostValue> outputs;
    outputs.reserve(3);
    outputs.push_back(std::move(fileSpec));
    outputs.push_back(HostValue::doubleScalar(static_cast<double>(status.st_size)));
    outputs.push_back(HostValue::doubleScalar(static_cast<double>(status.st_mtim.tv_sec)));
    return CallArguments::success("tdprivate lb_getLibraryData", outputCount, std::move(outputs));
}

BlockTree::NodeId RepositoryOperations::childAtPath(BlockTree::NodeId container, const std::string& containerPath,
                                                    const std::string& path, FileIssue& issue)
{
    // The children of one container come together; looking each up in the
    // container keeps a call for thousands of children linear.
    if (path.size() > containerPath.size() + 1 && path.compare(0, containerPath.size(), containerPath) == 0
        && path[containerPath.size()] == '/') {
        const std::vector<std::string> rest = BlockPath::split(path.substr(containerPath.size() + 1));
        if (rest.size() == 1 && !rest.front().empty()) {
            const BlockTree::NodeId child = m_tree.childNamed(container, rest.front());
            if (child != BlockTree::none)
                return child;
        }
    }
    return m_tree.nodeAtPath(path, issue);
}

bool RepositoryOperations::iconOf(BlockTree::NodeId id, QByteArray& svg, FileIssue& issue)
{
    if (BlockTree::isLibrary(m_tree.node(id))) {
        svg = IconRenderer::render(IconSpec{IconShape::Rounded, {}, 0, 0, {}}, m_tree.node(id).name,
                                   BlockType::SubSystem, BlockPosition{0, 0, 60, 50});
        return true;
    }
    const BlockTree::Held held = m_tree.hold(id, issue);
    if (!held)
        return false;
    const BlockRecord& block = *held.record;
    IconSpec icon = block.icon;
    if (block.type == BlockType::LibraryRef && !block.hasIcon) {
        const BlockTree::NodeId target = m_tree.resolveReference(id, issue);
        if (target == BlockTree::none)
            return false;
        const BlockTree::Held targetHeld = m_tree.hold(target, issue);
        if (!targetHeld)
            return false;
        if (const BlockRecord* targetRecord = targetHeld.record)
            icon = targetRecord->icon;
    }
    svg = IconRenderer::render(icon, block.name, block.type, block.position);
    return true;
}

RepositoryOperations::CallResult RepositoryOperations::createSubSystemIcons(int outputCount, CallArguments& args)
{
    HostLogSink* report = args.report(0);
    std::string parentPath;
    std::vector<std::string> childPaths, files;
    if (!args.string(1, parentPath) || !args.strings(2, childPaths) || !args.strings(3, files))
        return reportFailure(report, badArguments, args.error());
    if (childPaths.size() != files.size())
        return reportFailure(report, badArguments,
                             "lb_createSubSystemIcons: " + std::to_string(childPaths.size()) + " children but "
                                 + std::to_string(files.size()) + " file names");
    FileIssue issue;
    BlockTree::NodeId container = m_tree.nodeAtPath(parentPath, issue);
    if (container != BlockTree::none && m_tree.node(container).type == BlockType::LibraryRef)
        container = m_tree.resolveReference(container, issue);
    if (container == BlockTree::none)
        return reportFailure(report, invalidFile, "lb_createSubSystemIcons: " + issue.toString());

    // Every icon is drawn before the first file is written: a bad child
    // leaves the disk as it was.
    std::vector<QByteArray> icons(childPaths.size());
    for (std::size_t i = 0; i < childPaths.size(); ++i) {
        const BlockTree::NodeId child = childAtPath(container, parentPath, childPaths[i], issue);
        if (child == BlockTree::none || !iconOf(child, icons[i], issue))
            return reportFailure(report, invalidFile, "lb_createSubSystemIcons: " + issue.toString());
    }
    // Each file is made from its directory, held open while files of the
    // same directory follow: a library's icons go to a few directories, and
    // a path walked again for each one cost more than its writing.
    QByteArray madeDirectory;
    int directory = -1;
    std::string failed;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const QByteArray file = QFile::encodeName(QString::fromStdString(files[i]));
        const qsizetype slash = file.lastIndexOf('/');
        const QByteArray parent = slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : file.left(slash);
        if (parent != madeDirectory || directory < 0) {
            if (directory >= 0)
                ::close(directory);
            QDir().mkpath(QFile::decodeName(parent));
            directory = file.contains('\0') ? -1 : ::open(parent.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
            madeDirectory = parent;
        }
        if (directory < 0 || !writeFile(directory, file.mid(slash + 1), icons[i])) {
            failed = "lb_createSubSystemIcons: cannot write the icon file " + files[i];
            if (report)
                report->logError("Tandril:Host:WriteFailed", failed);
        }
    }
    if (directory >= 0)
        ::close(directory);
    if (!failed.empty())
        return CallArguments::failure("Tandril:Host:WriteFailed", failed);
    return CallArguments::success("tdprivate lb_createSubSystemIcons", outputCount, {});
}

RepositoryOperations::CallResult RepositoryOperations::removeDirectory(int outputCount, CallArguments& args)
{
    std::string path;
    std::string mode;
    if (!args.string(0, path) || (args.has(1) && !args.string(1, mode)))
        return args.failure(badArguments);
    const auto answer = [&](bool ok, const std::string& message, const std::string& id) {
        return CallArguments::success("tdprivate rmdir", outputCount,
                                      {HostValue::logicalScalar(ok), HostValue::string(message),
                                       HostValue::string(id)});
    };
    const QFileInfo info(QString::fromStdString(path));
    if (path.empty() || !info.isDir())
        return answer(false, "No directory " + path + " to remove.", "Tandril:Host:rmdir:NotFound");
    const QString target = QDir::cleanPath(info.absoluteFilePath());
    const QString root = QDir::cleanPath(m_path.root());
    // Never the host's own tree nor anything that holds it.
    if (target == QDir::rootPath() || root == target || root.startsWith(target + QLatin1Char('/')))
        return answer(false, "Refusing to remove " + path + ", which holds the host root.",
                      "Tandril:Host:rmdir:Refused");
    const bool removed = mode == "s" ? DirectoryTree::remove(target) : QDir(target).rmdir(target);
    if (!removed)
        return answer(false, "Could not remove " + path + (mode == "s" ? "." : ": it is not empty."),
                      "Tandril:Host:rmdir:Failed");
    return answer(true, std::string(), std::string());
}

} // namespace LibraryBrowser::Host

#include "ModelWindows.h"

#include "BlockDialog.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileInfo>

namespace LibraryBrowser::Host {

namespace {

const QString modelSuffix = QStringLiteral(".tdlib.json");

QString text(const std::string& s) { return QString::fromStdString(s); }

} // namespace

ModelWindows::ModelWindows(SystemRegistry& systems) : m_systems(systems), m_prompts(ModelWindowPrompts::dialogs())
{
}

ModelWindows::~ModelWindows()
{
    for (const QPointer<QDialog>& dialog : m_dialogs)
        delete dialog.data();
}

void ModelWindows::sync()
{
    for (auto it = m_windows.begin(); it != m_windows.end();) {
        const OpenSystem* system = m_systems.find(it->first);
        it = system && system->shown ? std::next(it) : m_windows.erase(it);
    }
    for (const OpenSystem& system : m_systems.systems()) {
        if (!system.shown)
            continue;
        auto& window = m_windows[system.name];
        const bool isNew = !window;
        if (isNew) {
            window = std::make_unique<ModelWindow>(system.name);
            adopt(window.get());
        }
        window->showSystem(system);
        if (isNew || !window->isVisible())
            window->show();
        if (isNew)
            window->raise();
    }
}

void ModelWindows::adopt(ModelWindow* window)
{
    connect(window, &ModelWindow::activated, this, [this](const std::string& name) { m_systems.setCurrent(name); });
    connect(window, &ModelWindow::closed, this, [this](const std::string& name) {
        // The window is inside its close event: it goes when the event is done.
        m_systems.close(name);
        if (const auto found = m_windows.find(name); found != m_windows.end()) {
            found->second.release()->deleteLater();
            m_windows.erase(found);
        }
    });
    connect(window, &ModelWindow::fileCommand, this,
            [this](ModelWindow::FileCommand command, const std::string& name) { onFileCommand(command, name); });
    connect(window, &ModelWindow::typedOnCanvas, this,
            [this](const std::string& name, const QPoint& global, const QString& text) {
                const OpenSystem* system = m_systems.find(name);
                if (m_typing && system && !(system->type == SystemType::Library && system->locked))
                    m_typing(name, global, text);
            });
    window->setCloseGuard([this](const std::string& name) { return mayClose(name); });
}

void ModelWindows::onFileCommand(ModelWindow::FileCommand command, const std::string& name)
{
    switch (command) {
    case ModelWindow::FileCommand::NewModel:
        m_systems.newSystem(SystemType::Model);
        sync();
        break;
    case ModelWindow::FileCommand::Open: {
        std::string error;
        open(window(name), error);
        break;
    }
    case ModelWindow::FileCommand::Save: save(name, false); break;
    case ModelWindow::FileCommand::SaveAs: save(name, true); break;
    }
}

ModelWindow* ModelWindows::window(const std::string& name) const
{
    const auto found = m_windows.find(name);
    return found == m_windows.end() ? nullptr : found->second.get();
}

std::string ModelWindows::systemAt(const QPoint& global) const
{
    if (auto* window = qobject_cast<ModelWindow*>(QApplication::topLevelAt(global)))
        return window->systemName();
    // Without a window manager's stacking, the geometry decides.
    for (const auto& [name, window] : m_windows)
        if (window->isVisible() && window->frameGeometry().contains(global))
            return name;
    return {};
}

std::optional<QPointF> ModelWindows::toModel(const std::string& name, const QPoint& global) const
{
    const ModelWindow* shown = window(name);
    if (!shown || !shown->isVisible())
        return std::nullopt;
    return shown->toModel(global);
}

bool ModelWindows::rename(const std::string& from, const std::string& to)
{
    std::string error;
    if (!m_systems.rename(from, to, error)) {
        m_prompts.failure(window(from), QStringLiteral("Save Model"), text(error));
        return false;
    }
    if (auto found = m_windows.find(from); found != m_windows.end()) {
        std::unique_ptr<ModelWindow> moved = std::move(found->second);
        m_windows.erase(found);
        moved->setSystemName(to);
        m_windows[to] = std::move(moved);
    }
    return true;
}

// The name is a copy: renaming changes the window's own, which callers pass.
bool ModelWindows::save(std::string name, bool chooseFile)
{
    const OpenSystem* system = m_systems.find(name);
    if (!system)
        return false;
    QString file = system->file;
    std::string saved = name;
    if (chooseFile || file.isEmpty()) {
        const QString suggested = file.isEmpty() ? QDir::home().filePath(text(name) + modelSuffix) : file;
        file = m_prompts.saveFileName(window(name), suggested);
        if (file.isEmpty())
            return false;
        if (!file.endsWith(modelSuffix))
            file += modelSuffix;
        // The model is named after its file, as the file format wants it.
        const QString fileName = QFileInfo(file).fileName();
        saved = fileName.left(fileName.size() - modelSuffix.size()).toStdString();
        if (saved != name && !rename(name, saved))
            return false;
    }
    std::string error;
    if (!m_systems.save(saved, file, error)) {
        if (saved != name)
            rename(saved, name);
        m_prompts.failure(window(name), QStringLiteral("Save Model"),
                          QStringLiteral("The model \"%1\" was not saved to %2: %3")
                              .arg(text(name), QDir::toNativeSeparators(file), text(error)));
        sync();
        return false;
    }
    sync();
    return true;
}

bool ModelWindows::open(QWidget* parent, std::string& error)
{
    const QString file = m_prompts.openFileName(parent);
    if (file.isEmpty())
        return true;
    if (!m_systems.openFile(file, error)) {
        m_prompts.failure(parent, QStringLiteral("Open Model"), text(error));
        return false;
    }
    sync();
    if (ModelWindow* opened = window(m_systems.current() ? m_systems.current()->name : std::string())) {
        opened->raise();
        opened->activateWindow();
    }
    return true;
}

bool ModelWindows::mayClose(const std::string& name)
{
    const OpenSystem* system = m_systems.find(name);
    if (!system || !system->dirty)
        return true;
    switch (m_prompts.unsavedChanges(window(name), text(name))) {
    case ModelWindowPrompts::Unsaved::Save: return save(name, false);
    case ModelWindowPrompts::Unsaved::Discard: return true;
    case ModelWindowPrompts::Unsaved::Cancel: break;
    }
    return false;
}

void ModelWindows::showBlockDialog(const std::string& path, const BlockRecord& block, const std::string& kind)
{
    auto* dialog = new BlockDialog(path, block, kind);
    m_dialogs.emplace_back(dialog);
    dialog->show();
    dialog->raise();
}

void ModelWindows::showBlockHelp(const std::string& path, const BlockRecord& block)
{
    QString html = "<h2>" + text(block.name).toHtmlEscaped() + "</h2><p><i>" + text(path).toHtmlEscaped() +
                   "</i></p><p>" +
                   (block.description.empty() ? QStringLiteral("No help is written for this block.")
                                              : text(block.description).toHtmlEscaped().replace('\n', "<br>")) +
                   "</p>";
    const QString ports = BlockDialog::portsText(block);
    if (!ports.isEmpty())
        html += "<p><b>Ports:</b> " + ports + "</p>";
    if (!block.parameters.empty()) {
        html += "<p><b>Parameters</b></p><table cellspacing=4>";
        for (const auto& [parameter, value] : block.parameters)
            html += "<tr><td>" + text(parameter).toHtmlEscaped() + ":</td><td>" + text(value).toHtmlEscaped() +
                    "</td></tr>";
        html += "</table>";
    }
    help().showHtml("Help: " + text(block.name), html);
}

void ModelWindows::showHelp(const QString& title, const QString& markdown)
{
    help().showMarkdown(title, markdown);
}

HelpWindow& ModelWindows::help()
{
    if (!m_help)
        m_help = std::make_unique<HelpWindow>();
    return *m_help;
}

void ModelWindows::closeDialogs()
{
    for (const QPointer<QDialog>& dialog : m_dialogs)
        if (dialog)
            dialog->close();
    m_dialogs.clear();
    if (m_help)
        m_help->close();
}

int ModelWindows::openDialogCount() const
{
    int count = m_help && m_help->isVisible() ? 1 : 0;
    for (const QPointer<QDialog>& dialog : m_dialogs)
        count += dialog && dialog->isVisible() ? 1 : 0;
    return count;
}

} // namespace LibraryBrowser::Host

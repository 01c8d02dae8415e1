#include "ModelWindows.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace LibraryBrowser::Host {

ModelWindows::ModelWindows(SystemRegistry& systems) : m_systems(systems) {}

ModelWindows::~ModelWindows() { closeDialogs(); }

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
            connect(window.get(), &ModelWindow::activated, this,
                    [this](const std::string& name) { m_systems.setCurrent(name); });
            connect(window.get(), &ModelWindow::closed, this, [this](const std::string& name) {
                // The window is inside its close event: it goes when the event is done.
                m_systems.close(name);
                const auto found = m_windows.find(name);
                found->second.release()->deleteLater();
                m_windows.erase(found);
            });
        }
        window->showSystem(system);
        if (isNew || !window->isVisible())
            window->show();
        if (isNew)
            window->raise();
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

void ModelWindows::showBlockDialog(const std::string& path, const BlockRecord& block, const std::string& kind)
{
    auto* dialog = new QDialog();
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(QString::fromStdString(kind == "params" ? "Parameters: " + block.name : block.name));
    auto* layout = new QVBoxLayout(dialog);
    auto* heading = new QLabel("<b>" + QString::fromStdString(block.name).toHtmlEscaped() + "</b>");
    heading->setToolTip(QString::fromStdString(path));
    layout->addWidget(heading);
    auto* description = new QLabel(QString::fromStdString(block.description));
    description->setWordWrap(true);
    layout->addWidget(description);
    if (kind == "params") {
        auto* form = new QFormLayout();
        for (const auto& [name, value] : block.parameters)
            form->addRow(QString::fromStdString(name) + ":", new QLabel(QString::fromStdString(value)));
        if (block.parameters.empty())
            form->addRow(new QLabel("This block has no parameters."));
        layout->addLayout(form);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
    layout->addWidget(buttons);
    m_dialogs.emplace_back(dialog);
    dialog->show();
}

void ModelWindows::showHelp(const std::string& path, const BlockRecord& block)
{
    BlockRecord help = block;
    help.description = block.description.empty() ? "No help is written for this block." : block.description;
    showBlockDialog(path, help, "help");
    m_dialogs.back()->setWindowTitle(QString::fromStdString("Help: " + block.name));
}

void ModelWindows::closeDialogs()
{
    for (const QPointer<QDialog>& dialog : m_dialogs)
        if (dialog)
            dialog->close();
    m_dialogs.clear();
}

int ModelWindows::openDialogCount() const
{
    int count = 0;
    for (const QPointer<QDialog>& dialog : m_dialogs)
        count += dialog && dialog->isVisible() ? 1 : 0;
    return count;
}

} // namespace LibraryBrowser::Host

#pragma once

#include "ModelWindow.h"
#include "SystemRegistry.h"

#include <QObject>
#include <QPointer>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QDialog;

namespace LibraryBrowser::Host {

// The host's windows: one per shown system, and the block dialogs and help
// the browser asks for. Only a host that runs with a screen has them; the
// systems themselves live in the registry, which these windows only show.
class ModelWindows : public QObject {
    Q_OBJECT

public:
    explicit ModelWindows(SystemRegistry& systems);
    ~ModelWindows() override;

    // Opens a window for each shown system that has none and redraws all.
    void sync();
    ModelWindow* window(const std::string& name) const;
    // The system whose window lies under the point of the screen; empty if none.
    std::string systemAt(const QPoint& global) const;
    // The model point of the system's window under the point of the screen.
    std::optional<QPointF> toModel(const std::string& name, const QPoint& global) const;

    // kind "default" shows name and description, "params" the parameters too.
    void showBlockDialog(const std::string& path, const BlockRecord& block, const std::string& kind);
    void showHelp(const std::string& path, const BlockRecord& block);
    void closeDialogs();
    int openDialogCount() const;

private:
    SystemRegistry& m_systems;
    std::map<std::string, std::unique_ptr<ModelWindow>> m_windows;
    std::vector<QPointer<QDialog>> m_dialogs;
};

} // namespace LibraryBrowser::Host

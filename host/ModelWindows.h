#pragma once

#include "HelpWindow.h"
#include "ModelWindow.h"
#include "ModelWindowPrompts.h"
#include "SystemRegistry.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QDialog;

namespace LibraryBrowser::Host {

// The host's windows: one per shown system, the block dialogs and the help
// window the browser asks for. Only a host that runs with a screen has them;
// the systems themselves live in the registry, which these windows show,
// save and open.
class ModelWindows : public QObject {
    Q_OBJECT

public:
    explicit ModelWindows(SystemRegistry& systems);
    ~ModelWindows() override;

    void setPrompts(ModelWindowPrompts prompts) { m_prompts = std::move(prompts); }

    // Who answers text typed on the drawing of a system that can take
    // blocks (not a locked library): the program that runs the browser
    // opens its quick insert there. Null (the default) ignores the typing.
    using TypingHandler = std::function<void(const std::string& system, const QPoint& global, const QString& text)>;
    void setTypingHandler(TypingHandler handler) { m_typing = std::move(handler); }

    // Opens a window for each shown system that has none and redraws all.
    void sync();
    ModelWindow* window(const std::string& name) const;
    // The system whose window lies under the point of the screen; empty if none.
    std::string systemAt(const QPoint& global) const;
    // The model point of the system's window under the point of the screen.
    std::optional<QPointF> toModel(const std::string& name, const QPoint& global) const;

    // Saves the system to its file; to one the person chooses when it has
    // none yet or when asked to. A model saved to a new file takes the
    // file's name. False when cancelled or failed; a failure is shown.
    bool save(std::string name, bool chooseFile);
    // Asks for a saved model and opens it in a window. False with the reason
    // (shown too) when the file can't be opened; true when opened or when
    // the person cancelled.
    bool open(QWidget* parent, std::string& error);
    // Whether the system's window may close: unsaved changes are saved,
    // dropped or keep it open, as the person answers.
    bool mayClose(const std::string& name);

    // kind "default" or "params"; see BlockDialog.
    void showBlockDialog(const std::string& path, const BlockRecord& block, const std::string& kind);
    void showBlockHelp(const std::string& path, const BlockRecord& block);
    void showHelp(const QString& title, const QString& markdown);
    HelpWindow* helpWindow() const { return m_help.get(); }
    // Closes the block dialogs and the help window.
    void closeDialogs();
    // Block dialogs and help window shown now.
    int openDialogCount() const;

private:
    void onFileCommand(ModelWindow::FileCommand command, const std::string& name);
    void adopt(ModelWindow* window);
    bool rename(const std::string& from, const std::string& to);
    // Made at the first request for help.
    HelpWindow& help();

    SystemRegistry& m_systems;
    ModelWindowPrompts m_prompts;
    std::map<std::string, std::unique_ptr<ModelWindow>> m_windows;
    std::vector<QPointer<QDialog>> m_dialogs;
    std::unique_ptr<HelpWindow> m_help;
    TypingHandler m_typing;
};

} // namespace LibraryBrowser::Host

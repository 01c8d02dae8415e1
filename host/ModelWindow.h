#pragma once

#include "SystemRegistry.h"

#include <QMainWindow>

#include <functional>
#include <map>
#include <string>

class QAction;
class QKeyEvent;
class QGraphicsView;

namespace LibraryBrowser::Host {

// The window of one open model or library: its top-level blocks drawn with
// their icons and names where the system places them, in model units, one
// pixel each, under a File menu. The title carries the name, a mark for
// unsaved changes, and the lock of a library.
class ModelWindow : public QMainWindow {
    Q_OBJECT

public:
    enum class FileCommand { NewModel, Open, Save, SaveAs };

    explicit ModelWindow(const std::string& name);

    const std::string& systemName() const { return m_name; }
    // After the system was saved under a new name.
    void setSystemName(const std::string& name) { m_name = name; }
    // Draws the system anew and titles the window after it.
    void showSystem(const OpenSystem& system);
    // The model point under a point of the screen.
    QPointF toModel(const QPoint& global) const;
    // The names of the blocks drawn, in order.
    QStringList blockNames() const;
    // The drawing area, whose corner is the model's origin.
    QWidget* viewport() const;
    QAction* fileAction(FileCommand command) const;
    // Asked before the window closes; false keeps it open.
    void setCloseGuard(std::function<bool(const std::string& name)> guard) { m_closeGuard = std::move(guard); }

signals:
    void activated(const std::string& name);
    // The user closed the window, and with it the system.
    void closed(const std::string& name);
    void fileCommand(FileCommand command, const std::string& name);
    // The user typed text on the drawing, at a point of the screen: where the
    // mouse is when it is over the drawing, else the drawing's centre.
    void typedOnCanvas(const std::string& name, const QPoint& global, const QString& text);

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createFileMenu();
    // True when the key press was text, now sent on as typedOnCanvas.
    bool forwardTyping(const QKeyEvent* key);
    void fitScene();

    std::string m_name;
    QGraphicsView* m_view = nullptr;
    QStringList m_blockNames;
    std::map<FileCommand, QAction*> m_fileActions;
    std::function<bool(const std::string&)> m_closeGuard;
};

} // namespace LibraryBrowser::Host

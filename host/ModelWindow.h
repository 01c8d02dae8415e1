#pragma once

#include "SystemRegistry.h"

#include <QGraphicsView>

#include <string>

namespace LibraryBrowser::Host {

// The window of one open model or library: its top-level blocks drawn with
// their icons and names where the system places them, in model units, one
// pixel each. The title carries the name, a mark for unsaved changes, and
// the lock of a library.
class ModelWindow : public QGraphicsView {
    Q_OBJECT

public:
    explicit ModelWindow(const std::string& name);

    const std::string& systemName() const { return m_name; }
    // Draws the system anew and titles the window after it.
    void showSystem(const OpenSystem& system);
    // The model point under a point of the screen.
    QPointF toModel(const QPoint& global) const;
    // The names of the blocks drawn, in order.
    QStringList blockNames() const;

signals:
    void activated(const std::string& name);
    // The user closed the window, and with it the system.
    void closed(const std::string& name);

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void fitScene();

    std::string m_name;
    QStringList m_blockNames;
};

} // namespace LibraryBrowser::Host

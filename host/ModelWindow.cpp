#include "ModelWindow.h"

#include "IconRenderer.h"

#include <QAction>
#include <QCloseEvent>
#include <QCursor>
#include <QEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsSimpleTextItem>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPainter>
#include <QSvgRenderer>

namespace LibraryBrowser::Host {

namespace {

QPixmap iconPixmap(const BlockRecord& block, const QSizeF& size, qreal ratio)
{
    QPixmap pixmap((size * ratio).toSize().expandedTo(QSize(1, 1)));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(IconRenderer::render(block.icon, block.name, block.type, block.position));
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(QPointF(0, 0), size));
    return pixmap;
}

struct FileEntry {
    ModelWindow::FileCommand command;
    const char* label;
    QKeySequence::StandardKey key;
    bool separatorBefore;
};

const FileEntry fileEntries[] = {
    {ModelWindow::FileCommand::NewModel, "&New Model", QKeySequence::New, false},
    {ModelWindow::FileCommand::Open, "&Open...", QKeySequence::Open, false},
    {ModelWindow::FileCommand::Save, "&Save", QKeySequence::Save, true},
    {ModelWindow::FileCommand::SaveAs, "Save &As...", QKeySequence::SaveAs, false},
};

} // namespace

ModelWindow::ModelWindow(const std::string& name) : m_name(name)
{
    m_view = new QGraphicsView(this);
    m_view->setScene(new QGraphicsScene(m_view));
    m_view->setRenderHint(QPainter::Antialiasing);
    m_view->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_view->setBackgroundBrush(Qt::white);
    m_view->installEventFilter(this);
    setCentralWidget(m_view);
    setAttribute(Qt::WA_DeleteOnClose, false);
    createFileMenu();
    resize(640, 420);
}

void ModelWindow::createFileMenu()
{
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    for (const FileEntry& entry : fileEntries) {
        if (entry.separatorBefore)
            file->addSeparator();
        QAction* action = file->addAction(QString::fromLatin1(entry.label));
        action->setShortcut(entry.key);
        connect(action, &QAction::triggered, this, [this, command = entry.command] { emit fileCommand(command, m_name); });
        m_fileActions[entry.command] = action;
    }
    file->addSeparator();
    QAction* close = file->addAction(QStringLiteral("&Close"));
    close->setShortcut(QKeySequence::Close);
    connect(close, &QAction::triggered, this, &QWidget::close);
}

QAction* ModelWindow::fileAction(FileCommand command) const { return m_fileActions.at(command); }

void ModelWindow::showSystem(const OpenSystem& system)
{
    QGraphicsScene* drawing = m_view->scene();
    drawing->clear();
    m_blockNames.clear();
    const qreal ratio = devicePixelRatioF();
    for (const BlockRecord& block : system.document.blocks) {
        const QRectF rect(block.position.left, block.position.top, block.position.right - block.position.left,
                          block.position.bottom - block.position.top);
        auto* icon = drawing->addPixmap(iconPixmap(block, rect.size(), ratio));
        icon->setPos(rect.topLeft());
        icon->setToolTip(QString::fromStdString(block.description));
        auto* label = drawing->addSimpleText(QString::fromStdString(block.name));
        label->setPos(rect.center().x() - label->boundingRect().width() / 2, rect.bottom() + 4);
        m_blockNames.append(QString::fromStdString(block.name));
    }
    fitScene();
    QString title = QString::fromStdString(system.name);
    if (system.dirty)
        title += " *";
    const bool locked = system.type == SystemType::Library && system.locked;
    if (locked)
        title += " (locked library)";
    else if (system.type == SystemType::Library)
        title += " (library)";
    setWindowTitle(title);
    // A locked library is read only: it has nothing to save.
    fileAction(FileCommand::Save)->setEnabled(!locked);
    fileAction(FileCommand::SaveAs)->setEnabled(!locked);
}

void ModelWindow::fitScene()
{
    // The model's origin stays at the view's corner, so that points map one
    // to one; the drawing grows to the right and down, and scrolls only once
    // it is larger than the view.
    QGraphicsScene* drawing = m_view->scene();
    const QRectF used = drawing->itemsBoundingRect();
    const QSize view = m_view->maximumViewportSize();
    drawing->setSceneRect(QRectF(0, 0, std::max(qreal(view.width()), used.right() + 40),
                                 std::max(qreal(view.height()), used.bottom() + 40)));
}

QPointF ModelWindow::toModel(const QPoint& global) const
{
    return m_view->mapToScene(m_view->viewport()->mapFromGlobal(global));
}

QStringList ModelWindow::blockNames() const { return m_blockNames; }

QWidget* ModelWindow::viewport() const { return m_view->viewport(); }

bool ModelWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_view && event->type() == QEvent::Resize)
        fitScene();
    else if (watched == m_view && event->type() == QEvent::FocusIn)
        emit activated(m_name);
    else if (watched == m_view && event->type() == QEvent::KeyPress && forwardTyping(static_cast<QKeyEvent*>(event)))
        return true;
    return QMainWindow::eventFilter(watched, event);
}

bool ModelWindow::forwardTyping(const QKeyEvent* key)
{
    // Text only: shortcuts, arrows and a lone space keep their meaning.
    const QString text = key->text();
    if (text.isEmpty() || !text.at(0).isPrint() || text.at(0).isSpace() ||
        (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
        return false;
    QWidget* drawing = m_view->viewport();
    QPoint global = QCursor::pos();
    if (!drawing->rect().contains(drawing->mapFromGlobal(global)))
        global = drawing->mapToGlobal(drawing->rect().center());
    emit typedOnCanvas(m_name, global, text);
    return true;
}

void ModelWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        emit activated(m_name);
    QMainWindow::changeEvent(event);
}

void ModelWindow::closeEvent(QCloseEvent* event)
{
    if (m_closeGuard && !m_closeGuard(m_name)) {
        event->ignore();
        return;
    }
    QMainWindow::closeEvent(event);
    if (event->isAccepted())
        emit closed(m_name);
}

} // namespace LibraryBrowser::Host

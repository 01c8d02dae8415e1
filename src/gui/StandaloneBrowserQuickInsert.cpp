#include "gui/StandaloneBrowser.h"

#include "gui/BlockContextMenu.h"
#include "gui/BrowserHostCommands.h"
#include "gui/QuickInsertPopup.h"

#include <QLineEdit>
#include <QMainWindow>

namespace LibraryBrowser {

namespace {

// Each further block of one popup lands this far right and down of the one before.
constexpr int CascadeStep = 30;

} // namespace

RankingIndexPtr StandaloneBrowser::internalRankingIndex()
{
    if (!m_rankingIndex) {
        internalSetCursor(Qt::WaitCursor);
        m_rankingIndex = RankingIndex::build(*m_repository);
        internalUnsetCursor();
    }
    return m_rankingIndex;
}

QuickInsertPopup* StandaloneBrowser::quickInsertPopup() const { return m_quickInsert.data(); }

void StandaloneBrowser::openQuickInsert(const std::string& system, std::optional<QPoint> dropPoint,
                                        const QString& typed)
{
    // Keys typed faster than the popup came up reach the drawing still: they
    // belong to the query.
    if (m_quickInsert && m_quickInsert->isVisible() && dropPoint) {
        m_quickInsert->queryEdit()->insert(typed);
        return;
    }
    if (m_quickInsert)
        m_quickInsert->close();
    const RankingIndexPtr index = internalRankingIndex();
    // Favourites and recents of blocks that are gone go quietly.
    m_history->keepOnly([&index](const std::string& path) { return index->findPath(path) < index->size(); });
    auto insert = [this, system, dropPoint](const TandrilObject& block, int insertedBefore) {
        internalQuickInsertBlock(block, system, dropPoint, insertedBefore);
    };
    // A child of the window, so that it goes with it; a popup all the same.
    // The host tells the type of the system in front only; a system typed on
    // is in front, as its window was activated.
    const OpenSystemState front = OpenSystemState::current();
    const bool intoLibrary = front.isUsable() && front.type == ModelType::Library &&
                             (system.empty() || system == front.name);
    m_quickInsert = new QuickInsertPopup(index, *m_repository, *m_history, insert, intoLibrary, m_window);
    m_quickInsert->setFont(m_guiFont);
    QPoint at = dropPoint.value_or(QPoint());
    if (!dropPoint) {
        const QRect frame = m_window->frameGeometry();
        at = QPoint(frame.center().x() - m_quickInsert->width() / 2, frame.top() + frame.height() / 5);
    }
    m_quickInsert->popUp(at, typed);
}

void StandaloneBrowser::internalOpenQuickInsertForSystemInFront()
{
    openQuickInsert(std::string(), std::nullopt, QString());
}

void StandaloneBrowser::internalQuickInsertBlock(const TandrilObject& block, const std::string& system,
                                                 std::optional<QPoint> dropPoint, int insertedBefore)
{
    const std::string path = block.getPath();
    internalLoadRootLibrary(path, block.getDisplayPath());
    std::string target = system;
    if (target.empty()) {
        const OpenSystemState front = OpenSystemState::current();
        target = front.isUsable() ? front.name : BrowserUtils::openNewSystem(ModelType::Model);
    }
    if (dropPoint) {
        const int shift = CascadeStep * insertedBefore;
        BrowserUtils::dropBlock(path, target, dropPoint->x() + shift, dropPoint->y() + shift);
    } else {
        BrowserUtils::addBlockToModel(path, target);
    }
    if (!m_history->noteAdded(path))
        internalSetStatusBarMessage(m_history->saveFailureMessage().toStdString());
}

} // namespace LibraryBrowser

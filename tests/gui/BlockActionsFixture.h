#pragma once

#include "BrowserWindowFixture.h"

#include "ModelWindow.h"
#include "ModelWindows.h"
#include "platform/HostInterpreter.h"

#include <QPoint>
#include <QStringList>

#include <ostream>
#include <string>
#include <vector>

namespace LibraryBrowser {
class GuiBlock;
}

// Texts in a failed check read as texts.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

namespace LibraryBrowser::Testing {

// The browser window with the host's model windows beside it: the targets
// of the block actions. Every test starts with no system open and the
// browser at the top left of the screen.
class BlockActionsFixture : public BrowserWindowFixture {
protected:
    void SetUp() override;
    void TearDown() override
    {
        call("private_td_close_block_dialogs");
        BrowserWindowFixture::TearDown();
    }

    HostInterpreter::CallResult call(const std::string& command, std::vector<HostValue> inputs = {}, int outputs = 0)
    {
        return session().host().callWithTrap(command, outputs, inputs);
    }
    // A new untitled system of the type ("Model" or "Library"); its name.
    std::string newSystem(const char* type);
    Host::ModelWindow* modelWindow(const std::string& name) { return session().host().modelWindows()->window(name); }
    // The blocks of an open system as the host holds them.
    QStringList blocksOf(const std::string& system);
    // Places the model window to the right of the browser, clear of it.
    void placeBesideBrowser(Host::ModelWindow* window)
    {
        window->move(browser().window()->frameGeometry().topRight() + QPoint(30, 0));
        settle();
    }

    // The browser on the tree node; the tile of the block on its page.
    StandaloneBrowser& openOn(const std::string& node);
    GuiBlock* tile(const std::string& displayPath);

    // Press on the tile, move, and release at the point of the screen, the
    // cursor following, as the window system delivers a drag: the events
    // enter through the browser's window and go to the tile that was pressed.
    void drag(GuiBlock* tile, Qt::MouseButton button, const QPoint& global);

    // The Edit menu opened and closed again: the add entry's label and
    // whether it was enabled while open.
    struct MenuEntry {
        QString label;
        bool enabled = false;
    };
    MenuEntry editMenuAddEntry();

    // What the user saw in the status bar, and what the host was asked,
    // since the mark.
    void mark()
    {
        m_statusMark = int(statusTexts().size());
        m_commandMark = session().host().commandLog().entries().size();
    }
    QStringList statusSinceMark() const { return statusTexts().mid(m_statusMark); }
    QStringList commandsSinceMark();

private:
    int m_statusMark = 0;
    std::size_t m_commandMark = 0;
};

} // namespace LibraryBrowser::Testing

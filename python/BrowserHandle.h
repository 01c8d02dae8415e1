#pragma once

#include "gui/StandaloneBrowser.h"

#include <QPointer>

#include <memory>

namespace LibraryBrowser::Python {

// What a script holds of a browser window: the process's one window, or a
// window that create made on a repository of the script's own, which the
// handle owns and deletes with itself. A window can go while a handle still
// refers to it (destroyInstance, the interpreter's exit); the handle then
// refuses every call with an error instead of reaching a deleted window.
class BrowserHandle {
public:
    static constexpr const char* Destroyed = "Tandril:StandaloneBrowser:Destroyed";
    static constexpr const char* Busy = "Tandril:StandaloneBrowser:Busy";

    // The process's window, made on first demand.
    static std::unique_ptr<BrowserHandle> instance();
    static std::unique_ptr<BrowserHandle> create(RepositoryPtr repository);

    ~BrowserHandle();
    BrowserHandle(const BrowserHandle&) = delete;
    BrowserHandle& operator=(const BrowserHandle&) = delete;

    // The window; a ScriptingError (Destroyed) when it is gone.
    StandaloneBrowser& window() const;
    bool isAlive() const { return !m_window.isNull(); }

    // Deletes the windows that handles own, while the module still runs:
    // their handles are stale from then on.
    static void destroyCreatedWindows();

private:
    BrowserHandle(StandaloneBrowser* window, std::unique_ptr<StandaloneBrowser> owned);

    QPointer<StandaloneBrowser> m_window;
    std::unique_ptr<StandaloneBrowser> m_owned;
};

} // namespace LibraryBrowser::Python

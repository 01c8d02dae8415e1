#include "BrowserHandle.h"

#include "PythonSession.h"

#include "scripting/ScriptingError.h"

#include <algorithm>
#include <vector>

namespace LibraryBrowser::Python {

namespace {

// The handles that own a window, in the order they were made.
std::vector<BrowserHandle*>& owners()
{
    static std::vector<BrowserHandle*> handles;
    return handles;
}

} // namespace

std::unique_ptr<BrowserHandle> BrowserHandle::instance()
{
    PythonSession::ensureStarted();
    StandaloneBrowser* window = StandaloneBrowser::getInstance();
    if (!window)
        throw ScriptingError(Busy, "The browser window is still being built; a call made while it is built "
                                   "can't reach it.");
    return std::unique_ptr<BrowserHandle>(new BrowserHandle(window, nullptr));
}

std::unique_ptr<BrowserHandle> BrowserHandle::create(RepositoryPtr repository)
{
    PythonSession::ensureStarted();
    std::unique_ptr<StandaloneBrowser> window = StandaloneBrowser::create(std::move(repository));
    StandaloneBrowser* pointer = window.get();
    return std::unique_ptr<BrowserHandle>(new BrowserHandle(pointer, std::move(window)));
}

BrowserHandle::BrowserHandle(StandaloneBrowser* window, std::unique_ptr<StandaloneBrowser> owned)
    : m_window(window), m_owned(std::move(owned))
{
    if (m_owned)
        owners().push_back(this);
}

BrowserHandle::~BrowserHandle()
{
    if (m_owned) {
        std::vector<BrowserHandle*>& handles = owners();
        handles.erase(std::remove(handles.begin(), handles.end(), this), handles.end());
    }
}

StandaloneBrowser& BrowserHandle::window() const
{
    if (m_window.isNull())
        throw ScriptingError(Destroyed, "The browser window of this handle has been destroyed.");
    return *m_window;
}

void BrowserHandle::destroyCreatedWindows()
{
    for (BrowserHandle* handle : owners())
        handle->m_owned.reset();
    owners().clear();
}

} // namespace LibraryBrowser::Python

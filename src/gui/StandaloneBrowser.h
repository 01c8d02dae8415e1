#pragma once

#include <memory>

namespace LibraryBrowser {

// The one browser window of the process, made on the first scripted demand
// and destroyed when the host exits. The window's widgets are assembled by
// the browser window code; this class owns the instance's lifetime.
class StandaloneBrowser {
public:
    static StandaloneBrowser& getInstance();
    static bool hasInstance();
    static void destroyInstance();

    StandaloneBrowser(const StandaloneBrowser&) = delete;
    StandaloneBrowser& operator=(const StandaloneBrowser&) = delete;
    ~StandaloneBrowser();

private:
    StandaloneBrowser();
    static std::unique_ptr<StandaloneBrowser>& slot();
};

} // namespace LibraryBrowser

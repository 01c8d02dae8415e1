#include "gui/StandaloneBrowser.h"

namespace LibraryBrowser {

StandaloneBrowser::StandaloneBrowser() = default;

StandaloneBrowser::~StandaloneBrowser() = default;

std::unique_ptr<StandaloneBrowser>& StandaloneBrowser::slot()
{
    static std::unique_ptr<StandaloneBrowser> instance;
    return instance;
}

StandaloneBrowser& StandaloneBrowser::getInstance()
{
    auto& instance = slot();
    if (!instance)
        instance.reset(new StandaloneBrowser());
    return *instance;
}

bool StandaloneBrowser::hasInstance()
{
    return slot() != nullptr;
}

void StandaloneBrowser::destroyInstance()
{
    slot().reset();
}

} // namespace LibraryBrowser

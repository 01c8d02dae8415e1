#include "support/RecordingHost.h"

#include "platform/HostApplication.h"
#include "platform/HostPackage.h"
#include "platform/MessageTable.h"

#include <sstream>

namespace LibraryBrowser::Testing {

void RecordingHostFramework::initializeDesignTools(ErrorHolder& errors)
{
    events.push_back("initializeDesignTools");
    StandaloneFramework::initializeDesignTools(errors);
}

void RecordingHostFramework::addMessageTable(const MessageTable& table)
{
    std::ostringstream line;
    line << "addMessageTable " << std::hex << std::uppercase << table.facility << ' ' << std::dec << table.count;
    events.push_back(line.str());
    StandaloneFramework::addMessageTable(table);
}

void RecordingHostFramework::addPackage(std::shared_ptr<HostPackage> package)
{
    events.push_back("addPackage " + (package ? package->name() : std::string("<null>")));
    StandaloneFramework::addPackage(std::move(package));
}

void RecordingHostFramework::removePackage(const StringId& name)
{
    events.push_back("removePackage " + name.str());
    StandaloneFramework::removePackage(name);
}

void RecordingHostFramework::removeApplication(HostApplication* application)
{
    events.push_back("removeApplication " + (application ? application->getName() : std::string("<null>")));
}

} // namespace LibraryBrowser::Testing

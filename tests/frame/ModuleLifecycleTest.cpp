#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "frame/Module.h"
#include "frame/ModuleEntry.h"
#include "frame/TDLBApp.h"
#include "platform/HostClass.h"
#include "platform/HostPackage.h"
#include "platform/MessageService.h"
#include "platform/Platform.h"
#include "support/RecordingHost.h"


#include <gtest/gtest.h>

#include <set>

using namespace LibraryBrowser;
using Testing::RecordingEnvironment;
using Testing::RecordingHostFramework;

// The module's state is process-wide and moves one way, so the whole life of
// the module is one test, in the order a host drives it.
TEST(ModuleLifecycle, StartAndEndInOrderAndOnlyOnce)
{
    RecordingHostFramework host;
    RecordingEnvironment environment("/opt/numora", "/home/user/.numora");
    Platform::setFramework(&host);
    Platform::setEnvironment(&environment);

    ASSERT_TRUE(!Module::isInitialized() && Module::application() == nullptr);

    // A host may load the application before it initialises the module.
    load_td_lib_browse_application();
    TDLBApp* first = Module::application();
    ASSERT_TRUE(first && first->localClasses().size() == 1u);
    EXPECT_EQ(first->localClasses().front()->name(), "StandaloneBrowser");

    NRInitialize_td_lib_browse();
    EXPECT_TRUE(Module::isInitialized());
    EXPECT_EQ(host.events, (std::vector<std::string>{"initializeDesignTools", "loadToolkitBridge qt",
                                                     "addMessageTable 5E 129", "addPackage Repository"}));
    EXPECT_EQ(first->localClasses().size(), 1u) << "the class is registered once";
    EXPECT_EQ(environment.rootQueries, 1) << "the start fills the host root once";
    EXPECT_TRUE(host.shutdownRegistry().contains("TDLibBrowse") && host.packages().size() == 1 &&
                host.packages().front()->name() == "Repository");

    NRInitialize_td_lib_browse();
    EXPECT_EQ(std::make_pair(host.events.size(), host.shutdownRegistry().size()), std::make_pair(4ul, 1ul))
        << "a second start does nothing";

    // The application can be rebuilt, but the new one gets no classes.
    delete first;
    EXPECT_EQ(Module::application(), nullptr);
    TDLBApp& second = Module::getApplication();
    load_td_lib_browse_application();
    EXPECT_TRUE(second.localClasses().empty());
    HostClass probe("Probe");
    probe.setInterfaceLoaded(true);
    second.addLocalClass(&probe);
    second.setClassLoaded(true);

    // The host's exit sequence runs the shutdown object (which closes the
    // window: the window's tests check that part).
    EXPECT_TRUE(host.shutdownRegistry().runExitSequence());

    host.events.clear();
    NRTerminate_td_lib_browse();
    EXPECT_TRUE(Module::isTerminated());
    EXPECT_EQ(host.events, (std::vector<std::string>{"removeApplication LibraryBrowser", "removePackage Repository",
                                                     "terminateDesignTools"}));
    EXPECT_FALSE(second.isClassLoaded() || probe.isInterfaceLoaded()) << "every class's interface mark is cleared";
    EXPECT_FALSE(host.shutdownRegistry().contains("TDLibBrowse") || !host.packages().empty());

    host.events.clear();
    NRTerminate_td_lib_browse();
    NRInitialize_td_lib_browse();
    EXPECT_TRUE(host.events.empty()) << "after the end the module cannot be brought up again";

    Platform::setFramework(nullptr);
    Platform::setEnvironment(nullptr);
}

// The entry points the host reads, and the message catalogue as the host's
// message service reads it: every row has its full number, a mnemonic of its
// own and a text; the reserved row 4 has a number and nothing else. (The
// texts and their formatting are checked where the window shows them.)
TEST(ModuleEntry, ExportsAnEmptyFunctionListAndTheMessageCatalogue)
{
    const ModuleFunction* functions = QueryNRFcns_td_lib_browse();
    ASSERT_TRUE(functions && !functions[0].name && QueryNRFcnTable_td_lib_browse()->functions == functions);

    const MessageTable& table = MessageCatalogue::table();
    MessageService::instance().addPrimaryTable(table);
    ASSERT_EQ(std::make_pair(table.count, table.facility), std::make_pair(129u, 0x5Eu));
    std::set<std::string> names;
    for (std::uint32_t i = 0; i < table.count; ++i)
        EXPECT_TRUE(table.numbers[i] == 0x5E0001u + i &&
                    (i + 1 == 4 ? table.names[i] == std::string() && !table.texts[i]
                                : std::string(table.names[i]).rfind("TDLB_", 0) == 0 &&
                                      names.insert(table.names[i]).second && table.texts[i] && *table.texts[i]))
            << "row " << i + 1;
    // The reserved row and another facility have no text; formatted text is cut at 4095 characters.
    const std::string text =
        Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading, std::string(5000, 'x'));
    EXPECT_EQ(std::make_tuple(Messages::xlatedMessageFromId(0x5E0002), Messages::xlatedMessageFromId(0x5E0004),
                              Messages::xlatedMessageFromId(0x5F0001), text.size(), text.substr(0, 9)),
              std::make_tuple(std::string("Tandril Library Browser"), std::string(), std::string(), std::size_t(4095),
                              std::string("Loading: ")));
}

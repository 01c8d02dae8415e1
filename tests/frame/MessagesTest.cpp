// The message catalogue as the host's message service reads it, and the
// lookups the window formats its texts with. The texts themselves are
// checked where they are shown.

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "platform/MessageService.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using namespace LibraryBrowser;

// Every row has its full number, a mnemonic of its own and a text; the
// reserved row 4 has a number and nothing else.
TEST(MessagesTest, RowsAreNumberedNamedAndLookedUpAndFormattedByFullNumber)
{
    const MessageTable& table = MessageCatalogue::table();
    MessageService::instance().addPrimaryTable(table);
    ASSERT_EQ(std::make_pair(table.count, table.facility), std::make_pair(129u, 0x5Eu));
    std::set<std::string> names;
    for (std::uint32_t i = 0; i < table.count; ++i) {
        SCOPED_TRACE("row " + std::to_string(i + 1));
        EXPECT_EQ(table.numbers[i], 0x5E0001u + i);
        if (i + 1 == 4) {
            EXPECT_TRUE(table.names[i] == std::string() && table.texts[i] == nullptr);
            continue;
        }
        EXPECT_TRUE(std::string(table.names[i]).rfind("TDLB_", 0) == 0 && names.insert(table.names[i]).second);
        EXPECT_TRUE(table.texts[i] && *table.texts[i]);
    }

    EXPECT_EQ(Messages::xlatedMessageFromId(0x5E0002), "Tandril Library Browser");
    EXPECT_EQ(Messages::xlatedMessageFromId(MessageId::TDLB_GuiLibraryBrowserShortTitle), "Library Browser");
    EXPECT_EQ(Messages::xlatedMessageFromId(0x5E0004), "") << "reserved row";
    EXPECT_EQ(Messages::xlatedMessageFromId(0x5F0001), "") << "other facility";
    EXPECT_EQ(Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading, "Tandril/Sources"),
              "Loading: Tandril/Sources");
    EXPECT_EQ(Messages::xlatedMessageFromIdAndCharStarAndThreeInts(MessageId::TDLB_GuiStatusBarSearchResults,
                                                                   "gain", 2, 3, 17),
              "Matches for 'gain'    2 blocksets    3 subsystems    17 blocks");
    EXPECT_EQ(Messages::xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(
                  MessageId::TDLB_GuiStatusBarSearchResultsNowSearching, "gain", 1, 0, 4, "Tandril"),
              "Matches for 'gain'    1 blocksets    0 subsystems    4 blocks    Searching Tandril");
    // Formatted text is cut at 4095 characters.
    const std::string text =
        Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading, std::string(5000, 'x'));
    EXPECT_EQ(std::make_pair(text.size(), text.substr(0, 9)), std::make_pair(std::size_t(4095), std::string("Loading: ")));
}

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "platform/MessageService.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

class MessagesTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { MessageService::instance().addPrimaryTable(MessageCatalogue::table()); }
};

TEST_F(MessagesTest, LooksUpAndFormatsByFullNumber)
{
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
}

TEST_F(MessagesTest, FormattedTextIsCutAt4095Characters)
{
    const std::string longName(5000, 'x');
    const std::string text = Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading, longName);
    EXPECT_EQ(text.size(), 4095u);
    EXPECT_EQ(text.substr(0, 9), "Loading: ");
}

#include "HostTestSupport.h"

#include "LibraryFileParser.h"

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// An icon may have up to 64 ports on a side, the limit itself included; one
// more is refused with the field and the allowed range named.
TEST(PortCountLimitTest, SixtyFourPortsAreAllowedAndSixtyFiveAreNot)
{
    FileIssue issue;
    const auto widest = LibraryFileParser::parseBytes(
        "mem", libraryJson("ports", R"([{"name": "Bus", "type": "Block", "icon": {"inputs": 64, "outputs": 64}}])"),
        "", issue);
    ASSERT_TRUE(widest) << issue.toString();
    EXPECT_EQ(widest->blocks.at(0).icon.inputs, 64);
    EXPECT_EQ(widest->blocks.at(0).icon.outputs, 64);

    FileIssue tooMany;
    EXPECT_FALSE(LibraryFileParser::parseBytes(
        "mem", libraryJson("ports", R"([{"name": "Bus", "type": "Block", "icon": {"inputs": 65}}])"), "", tooMany));
    EXPECT_NE(tooMany.toString().find("expected a whole number from 0 to 64"), std::string::npos)
        << tooMany.toString();
}

} // namespace

} // namespace LibraryBrowser::Host::Testing

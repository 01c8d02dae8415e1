#include "IconRenderer.h"

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// A drawn icon tells a subsystem (a filled mark in its corner) and a library
// reference (an arrow) from a plain block, which has neither.
TEST(IconKindMarksTest, OnlySubsystemsAndReferencesCarryTheirMarks)
{
    const BlockPosition box{0, 0, 70, 50};
    const auto marks = [&](BlockType type) {
        const QByteArray svg = IconRenderer::render(IconSpec{}, "Gain", type, box);
        return std::make_pair(svg.count("fill=\"#5a6f8c\""), svg.count("stroke=\"#5a6f8c\""));
    };
    EXPECT_EQ(marks(BlockType::Block), std::make_pair(qsizetype(0), qsizetype(0)));
    EXPECT_EQ(marks(BlockType::SubSystem), std::make_pair(qsizetype(1), qsizetype(0)));
    EXPECT_EQ(marks(BlockType::LibraryRef), std::make_pair(qsizetype(0), qsizetype(1)));
}

} // namespace

} // namespace LibraryBrowser::Host::Testing

#include "IconRenderer.h"

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// A drawn icon's size keeps its one decimal, and a whole number is written
// without ".0".
TEST(IconCoordinatesTest, SizesKeepOneDecimalAndWholeNumbersHaveNone)
{
    const QByteArray svg = IconRenderer::render(IconSpec{}, "Gain", BlockType::Block, {0, 0, 70.5, 50});
    EXPECT_TRUE(svg.contains("width=\"70.5\" height=\"50\"")) << svg.constData();
}

} // namespace

} // namespace LibraryBrowser::Host::Testing

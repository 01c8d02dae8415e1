#include "HostTestSupport.h"

#include "IconRenderer.h"

#include <QSvgRenderer>

#include <gtest/gtest.h>


namespace LibraryBrowser::Host::Testing {

namespace {

TEST(ExampleRootContent, ShowsEveryFeatureOfTheBrowser)
{
    HostFixture fixture(HostOptions::bundledRoot());
    const auto products = fixture.tdprivate("lb_getTdBlocksData", 9, {});
    ASSERT_TRUE(products.ok);
    Census census;
    const auto libraries = products.outputs[1].toStringList();
    const auto types = products.outputs[6].toStringList();
    for (std::size_t i = 0; i < libraries.size(); ++i)
        if (types[i] == "Product")
            takeCensus(fixture, libraries[i], census);
    EXPECT_TRUE(census.problems.empty()) << census.problems.front();
    EXPECT_GE(census.blocks, 150);
    EXPECT_GE(census.deepest, 4);
    EXPECT_GE(census.references, 5);
    EXPECT_GE(census.referencedLibraries.size(), 4u);
    EXPECT_TRUE(census.slash);
    EXPECT_TRUE(census.lineFeed);
    EXPECT_TRUE(census.nonAscii);
    EXPECT_TRUE(fixture.errors().empty());
}

TEST(IconRendererTest, IconsAreSmallValidAndTheSameEachTime)
{
    const BlockPosition box{0, 0, 70, 50};
    for (IconShape shape : {IconShape::Rectangle, IconShape::Rounded, IconShape::Triangle, IconShape::Circle,
                            IconShape::Diamond}) {
        for (BlockType type : {BlockType::Block, BlockType::SubSystem, BlockType::LibraryRef}) {
            const IconSpec icon{shape, "K<&>", 3, 2, ""};
            const QByteArray svg = IconRenderer::render(icon, "Gain", type, box);
            EXPECT_EQ(svg, IconRenderer::render(icon, "Gain", type, box));
            EXPECT_LT(svg.size(), 2048);
            EXPECT_TRUE(QSvgRenderer(svg).isValid()) << svg.constData();
            EXPECT_TRUE(svg.contains("K&lt;&amp;&gt;"));
        }
    }
    const QByteArray plain = IconRenderer::render(IconSpec{}, "Integrator", BlockType::Block, box);
    EXPECT_TRUE(plain.contains(">Integrator<")) << "no label given: the name";
    EXPECT_EQ(plain.count("M0 "), 1) << "one input mark";
    EXPECT_NE(IconRenderer::render(IconSpec{}, "Gain", BlockType::Block, {0, 0, 90, 50}), plain);
    const std::string own = "<svg xmlns=\"http://www.w3.org/2000/svg\"><circle r=\"3\"/></svg>";
    EXPECT_EQ(IconRenderer::render(IconSpec{IconShape::Circle, "", 0, 0, own}, "x", BlockType::Block, box),
              QByteArray::fromStdString(own));
    EXPECT_EQ(IconRenderer::defaultLabel("Zero-Order\nHold"), "Zero-Order");
    EXPECT_EQ(IconRenderer::defaultLabel("Übertragungsglied PT1"), "Übertragungsg…");
}

} // namespace
} // namespace LibraryBrowser::Host::Testing

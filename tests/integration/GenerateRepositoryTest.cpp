#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"

#include <QFile>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

const std::vector<std::string> Products = {"arithmetica", "kinetics", "switchyard", "tandril", "wavecraft"};

using GenerateRepositoryTest = GenerationFixture;

} // namespace

TEST_F(GenerateRepositoryTest, FromNothingEveryBlockAndIconReadsBack)
{
    generate();
    EXPECT_EQ(logCount("??? **Error**"), 0) << logText();

    const auto reader = makeReader();
    std::vector<std::string> listed;
    for (TandrilObjectIterator it = reader->getProductsIterator(); it.isValidIterator(); it.next())
        listed.push_back(it.current().getPath());
    std::sort(listed.begin(), listed.end());
    std::vector<std::string> expected = Products;
    expected.push_back("signal_workbench");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(listed, expected);

    int blocks = 0;
    for (const std::string& product : Products) {
        const TreeCounts declared = declaredCounts(product);
        const TreeCounts stored = storedCounts(*reader, product);
        EXPECT_EQ(stored.blocks, declared.blocks) << product;
        EXPECT_EQ(stored.subsystems, declared.subsystems) << product;
        EXPECT_EQ(stored.references, declared.references) << product;
        EXPECT_EQ(stored.icons, stored.blocks + stored.subsystems + stored.references) << product;
        blocks += stored.blocks + stored.subsystems + stored.references;
        EXPECT_TRUE(QFile::exists(QString::fromStdString(archiveOf(product, "icons")))) << product;
        EXPECT_TRUE(QFile::exists(QString::fromStdString(archiveOf(product, "manifests")))) << product;
    }
    EXPECT_EQ(blocks, 185);
}

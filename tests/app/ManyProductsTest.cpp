// A root of more products than a process may hold files open: reading must
// not keep one file per product.

#include "TdlbProcess.h"

#include "SyntheticRootGenerator.h"

namespace LibraryBrowser::Testing {
namespace {

TEST(ManyProductsTest, SearchOverSixHundredProductsNeedsNoMoreThan128OpenFiles)
{
    QTemporaryDir root, preferences;
    Host::SyntheticRootGenerator::Settings settings;
    settings.products = 600;
    settings.blocksPerProduct = 4;
    settings.depth = 2;
    settings.crossReferences = false;
    QString error;
    ASSERT_TRUE(Host::SyntheticRootGenerator(settings).write(root.path(), error)) << qPrintable(error);
    const QStringList where{"--root", root.path(), "--prefdir", preferences.path()};
    const auto run = [&](const QStringList& arguments) {
        return TdlbProcess::runRaw(where + arguments, TdlbProcess::environment(), 128);
    };
    const TdlbResult update = run({"update"});
    ASSERT_EQ(update.exitCode, 0) << qPrintable(update.err.left(2000));
    EXPECT_TRUE(update.out.contains("Updated: 600 products, 0 warnings")) << qPrintable(update.out.left(2000));
    // Each product has one subsystem, "Subsystem 0", so every product answers.
    const TdlbResult search = run({"search", "Subsystem 0"});
    EXPECT_EQ(search.exitCode, 0);
    EXPECT_FALSE(search.err.contains("Unable") || search.err.contains("rror")) << qPrintable(search.err.left(2000));
    EXPECT_TRUE(search.out.endsWith("600 hits in 600 products\n")) << qPrintable(search.out.right(500));
}

} // namespace
} // namespace LibraryBrowser::Testing

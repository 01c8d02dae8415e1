// Names the manifest's list forms can't carry must cost no product: a root in
// which one product depends on "notes, v2.txt" and "a|b" is updated, listed
// and updated again like any other.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QJsonArray>

namespace LibraryBrowser::Testing {
namespace {

TEST(TdlbOddNamesTest, DependenciesWithACommaOrABarLoseNoProduct)
{
    TdlbProcess tdlb;
    const std::string directory = (tdlb.root() + "/toolbox/kinetics/").toStdString();
    writeFile(directory + "notes, v2.txt", "release notes");
    writeFile(directory + "a|b", "odd");
    QByteArray entries = readFile(directory + "tdblocks.json");
    ASSERT_TRUE(entries.contains("\"kinetics.tdlib.json\""));
    writeFile(directory + "tdblocks.json",
              entries.replace("\"kinetics.tdlib.json\"", "\"kinetics.tdlib.json\", \"notes, v2.txt\", \"a|b\""));

    const TdlbResult update = tdlb.run({"update"});
    ASSERT_EQ(update.exitCode, 0) << qPrintable(update.err);
    // The one warning names the refused name's place; the comma is kept.
    EXPECT_TRUE(update.out.contains("Updated: 6 products, 1 warnings") && update.out.contains("tdblocks.json:13:") &&
                update.out.contains("entries[0].dependencies[2]") && !update.out.contains("notes"))
        << qPrintable(update.out);
    const TdlbResult list = tdlb.run({"list", "--json"});
    EXPECT_EQ(list.json()["products"].toArray().size(), 6) << qPrintable(list.out);
    EXPECT_TRUE(list.jsonEntry("products", "kinetics")["upToDate"].toBool()) << qPrintable(list.out);
    const auto before = snapshot(tdlb.preferences().toStdString());
    expectRuns(tdlb.withRoot({}), {{{"update"}, 0, {update.out}},
                                   {{"search", "Integrator"}, 0, {"kinetics/Continuous/Integrator"}}});
    EXPECT_TRUE(snapshot(tdlb.preferences().toStdString()) == before) << "a second update changes nothing";
}

} // namespace
} // namespace LibraryBrowser::Testing

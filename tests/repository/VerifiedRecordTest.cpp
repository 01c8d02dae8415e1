#include "repository/xmlrepository/VerifiedRecord.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Testing::readFile;
using Testing::writeFile;

int lineCount(const std::string& file)
{
    int lines = 0;
    for (const QByteArray& line : readFile(file).split('\n'))
        lines += line.isEmpty() ? 0 : 1;
    return lines;
}

// Records of several processes on one file: each reads it once, adds its
// changes at the end, and sees what the others added before it read; a line
// a killed process cut short spoils nothing after it; the file is written
// anew once superseded lines make up half of it, without the archives of a
// store that is gone.
TEST(VerifiedRecordTest, ProcessesAddTheirChangesAndTheFileStaysBounded)
{
    QTemporaryDir temp;
    const std::string base = temp.path().toStdString();
    const std::string file = base + "/prefs/toolbox/tandril/blocks/verified";
    ASSERT_TRUE(QDir().mkpath(temp.path() + "/live/synth"));
    const std::string icons = base + "/live/synth/lb_synth_icons_repos.rps";
    const std::string manifests = base + "/live/synth/lb_synth_manifests_repos.rps";
    const std::string other = base + "/live/other/lb_other_icons_repos.rps";
    const std::string gone = base + "/gone/synth/lb_synth_icons_repos.rps";
    const VerifiedStamp first{100, 5000}, second{120, 6000}, third{7, 7000};

    VerifiedRecord a(file);
    a.set(icons, first);
    a.set(manifests, first);
    a.set(gone, first);
    a.save();
    VerifiedRecord b(file);
    EXPECT_EQ(b.find(icons), first);
    EXPECT_EQ(b.find(other).size, -1) << "not recorded";

    // Both add at once: neither loses the other's line.
    a.set(icons, second);
    b.set(other, third);
    a.save();
    b.save();
    VerifiedRecord c(file);
    EXPECT_EQ(c.find(icons), second);
    EXPECT_EQ(c.find(other), third);
    EXPECT_EQ(c.find(manifests), first);

    a.erase(manifests);
    a.save();
    EXPECT_EQ(VerifiedRecord(file).find(manifests).size, -1) << "taken out";

    // A process killed in the middle of its line.
    QByteArray cut = readFile(file);
    writeFile(file, cut + "55\t8000\t" + QByteArray::fromStdString(manifests).left(20));
    a.set(manifests, third);
    a.save();
    VerifiedRecord d(file);
    EXPECT_EQ(d.find(manifests), third);
    EXPECT_EQ(d.find(other), third);

    const int linesBefore = lineCount(file);
    for (int i = 0; i < 200; ++i) {
        a.set(icons, VerifiedStamp{i, 9000});
        a.save();
        EXPECT_LE(a.lineCount(), 2 * 4 + 64 + 1u) << i;
    }
    EXPECT_LT(lineCount(file), linesBefore + 200) << "written anew on the way";
    EXPECT_EQ(a.find(icons), (VerifiedStamp{199, 9000})) << "a process sees its own changes";
    VerifiedRecord e(file);
    EXPECT_EQ(e.find(icons), (VerifiedStamp{199, 9000}));
    EXPECT_EQ(e.find(manifests), third);
    EXPECT_EQ(e.find(gone).size, -1) << "its store is gone";
}

} // namespace
} // namespace LibraryBrowser

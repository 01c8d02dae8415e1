// tdlb browse, run as a user runs it to make a picture of the window.

#include "TdlbProcess.h"

#include <QDir>
#include <QImage>
#include <QSettings>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

class TdlbBrowseTest : public ::testing::Test {
protected:
    QString preference(const QString& key) const
    {
        QSettings settings(tdlb.preferences() + "/LibraryBrowser.ini", QSettings::IniFormat);
        return settings.value("LibraryBrowser/" + key).toString();
    }

    TdlbProcess tdlb;
    QString picture = QDir(tdlb.preferences()).filePath("window.png");
};

TEST_F(TdlbBrowseTest, AScreenshotShowsTheAskedNodeAndLeavesTheUsersChoicesAlone)
{
    ASSERT_TRUE(tdlb.isReady());
    const TdlbResult first = tdlb.run({"browse", "--screenshot", picture});
    ASSERT_EQ(first.exitCode, 0) << qPrintable(first.err);
    const QString layout = preference("LBLayout");
    const QString iconSize = preference("LBIconSize");
    ASSERT_FALSE(layout.isEmpty()) << "the window wrote its preferences";

    const TdlbResult run = tdlb.run({"browse", "--select", "Kinetics/Continuous", "--layout", "list", "--icon-size",
                                     "large", "--size", "700x500", "--screenshot", picture});
    ASSERT_EQ(run.exitCode, 0) << qPrintable(run.err);
    const QImage image(picture);
    EXPECT_EQ(image.size(), QSize(700, 500));
    EXPECT_EQ(preference("LBLayout"), layout) << "the options were for that run only";
    EXPECT_EQ(preference("LBIconSize"), iconSize);
}

TEST_F(TdlbBrowseTest, AnUnknownNodeOrAWrongOptionSaysSo)
{
    ASSERT_TRUE(tdlb.isReady());
    const TdlbResult unknown = tdlb.run({"browse", "--select", "Kinetics/Nowhere", "--screenshot", picture});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_TRUE(unknown.err.contains("no library or subsystem 'Kinetics/Nowhere' in the tree")) << qPrintable(unknown.err);
    const TdlbResult layout = tdlb.run({"browse", "--layout", "diagonal", "--screenshot", picture});
    EXPECT_EQ(layout.exitCode, 2);
    EXPECT_TRUE(layout.err.contains("--layout is list or grid, not 'diagonal'")) << qPrintable(layout.err);
    const TdlbResult size = tdlb.run({"browse", "--size", "20x20", "--screenshot", picture});
    EXPECT_EQ(size.exitCode, 2);
    EXPECT_TRUE(size.err.contains("--size needs WIDTHxHEIGHT")) << qPrintable(size.err);
}

} // namespace
} // namespace LibraryBrowser::Testing

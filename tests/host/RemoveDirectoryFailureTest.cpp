#include "HostTestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// rmdir without "s" removes only an empty directory: a full one stays, and
// the answer says so instead of reporting success.
TEST(RemoveDirectoryFailureTest, AFullDirectoryStaysAndTheAnswerSaysWhy)
{
    HostFixture fixture(HostOptions::bundledRoot());
    QTemporaryDir temp;
    const QString full = temp.path() + "/LBwriter2";
    QDir().mkpath(full);
    QFile(full + "/kept.txt").open(QIODevice::WriteOnly);
    const auto result = fixture.host().callWithTrap(
        "tdprivate", 3, {HostValue::string("rmdir"), HostValue::string(full.toStdString())});
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.outputs[0].scalar(), 0.0);
    EXPECT_EQ(result.outputs[1].toString(), "Could not remove " + full.toStdString() + ": it is not empty.");
    EXPECT_EQ(result.outputs[2].toString(), "Tandril:Host:rmdir:Failed");
    EXPECT_TRUE(QFile::exists(full + "/kept.txt"));
}

} // namespace

} // namespace LibraryBrowser::Host::Testing

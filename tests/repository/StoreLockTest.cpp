#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/StoreLock.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace LibraryBrowser {
namespace {

using Testing::readFile;

// Whether another open file on the store's lock file can take the lock now.
bool lockIsFree(const QString& store)
{
    const int descriptor = ::open(QFile::encodeName(store + "/" + StoreLock::FileName).constData(), O_RDONLY);
    if (descriptor < 0)
        return true;
    const bool free = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    ::close(descriptor);
    return free;
}

// A store locked through a link and through its own name is one hold of the
// process, and a link pointed at another store afterwards locks that one.
TEST(StoreLockTest, OneHoldPerDirectoryHoweverNamedAndALinkFollowsItsTarget)
{
    QTemporaryDir temp;
    const QString first = temp.path() + "/first/store";
    const QString second = temp.path() + "/second/store";
    const QString link = temp.path() + "/link";
    ASSERT_TRUE(QDir().mkpath(first) && QDir().mkpath(second));
    ASSERT_TRUE(QFile::link(first, link));
    const RepositoryReportPtr report = RepositoryReport::create();

    {
        const StoreLock outer(*report, link.toStdString());
        ASSERT_TRUE(outer.isHeld());
        // A second hold of its own lock file would wait for this process forever.
        const StoreLock inner(*report, first.toStdString());
        EXPECT_TRUE(inner.isHeld());
        EXPECT_FALSE(lockIsFree(first));
        EXPECT_TRUE(readFile((first + "/" + StoreLock::FileName).toStdString()).startsWith("process "));
    }
    EXPECT_TRUE(lockIsFree(first));

    ASSERT_TRUE(QFile::remove(link));
    ASSERT_TRUE(QFile::link(second, link));
    {
        const StoreLock again(*report, link.toStdString());
        ASSERT_TRUE(again.isHeld());
        EXPECT_FALSE(lockIsFree(second)) << "the store the link leads to now";
        EXPECT_TRUE(lockIsFree(first));
    }
    EXPECT_TRUE(lockIsFree(second));
    for (const std::string& line : report->getLog())
        EXPECT_EQ(line.find("Waiting"), std::string::npos) << line;
}

} // namespace
} // namespace LibraryBrowser

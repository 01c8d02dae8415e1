#include "repository/StoreFixture.h"

#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/LibraryComparison.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QDateTime>
#include <QFileInfo>
#include <QProcess>

#include <cstdlib>
#include <ctime>

namespace LibraryBrowser {
namespace {

using namespace Testing;

// A library's model file and one dependency whose dates equal the recorded
// ones. Equal dates are trusted only where the records were made by a
// generation that started after the files' date: one that started in the
// same second or before it may have missed an edit that kept the date.
class RecentRecordsTest : public StoreFixture {
protected:
    void SetUp() override
    {
        StoreFixture::SetUp();
        for (const std::string& file : {tdblocks, model}) {
            writeFile(file, "{\"blocks\": [1, 2, 3]}");
            setModified(file, fileTime);
        }
        product = addRecordedSignals(*nodes, "toolbox/signals/tdblocks.json");
    }

    // A date as the writer words it (Qt's text date in local time), made
    // by the C library so that it follows the zone the test sets.
    static std::string localText(std::int64_t seconds)
    {
        const std::time_t time = std::time_t(seconds);
        std::tm local{};
        ::localtime_r(&time, &local);
        char text[64];
        std::strftime(text, sizeof text, "%a %b %-d %H:%M:%S %Y", &local);
        return text;
    }

    // Whether the generation that started `offset` seconds after the files'
    // date left records trusted by their dates, as the writer words its start.
    bool trustedAfterStartAt(std::int64_t offset)
    {
        product->setLastModified(localText(fileTime.toSecsSinceEpoch() + offset));
        report = RepositoryReport::create();
        HostOperations host(report);
        const bool upToDate = LibraryComparison(*report, store(), host).compareLibrary(*product, false);
        EXPECT_TRUE(upToDate) << offset << ": the content is the recorded one";
        const int trusted = loggedCount(*report, "The timestamps matched! (");
        const int recent = loggedCount(*report, "The timestamps matched but are too recent to trust (");
        EXPECT_EQ(trusted + recent, 2) << offset;
        EXPECT_EQ(loggedCount(*report, "The checksums matched!"), recent) << offset;
        return trusted == 2;
    }

    const QDateTime fileTime = QDateTime::fromSecsSinceEpoch(1763800000);
    const std::string tdblocks = hostRoot() + "/toolbox/signals/tdblocks.json";
    const std::string model = hostRoot() + "/toolbox/signals/signals.tdlib.json";
    ModelPtr nodes = Model::createModel();
    LibraryImpl* product = nullptr;
};

// In the test's own zone, and in zones from fourteen hours ahead of UTC to
// eleven behind (each in a process of its own, which takes the zone at its
// start), so that the written start read as local time is far from the same
// text read as UTC.
TEST_F(RecentRecordsTest, EqualDatesAreTrustedOnlyBeforeTheGenerationStarted)
{
    const std::int64_t someday = fileTime.toSecsSinceEpoch() - 20 * 86400;
    ASSERT_EQ(localText(someday), QDateTime::fromSecsSinceEpoch(someday).toString(Qt::TextDate).toStdString());
    for (const std::int64_t offset : {1, 3600, 15 * 3600, 3 * 86400})
        EXPECT_TRUE(trustedAfterStartAt(offset)) << offset;
    for (const std::int64_t offset : {0, -1, -3600, -15 * 3600, -3 * 86400})
        EXPECT_FALSE(trustedAfterStartAt(offset)) << offset;
    if (qEnvironmentVariableIsSet("TDLB_ZONE_CHILD"))
        return;
    for (const char* zone : {"UTC", "Pacific/Kiritimati", "Pacific/Pago_Pago", "America/St_Johns"}) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TZ", zone);
        environment.insert("TDLB_ZONE_CHILD", "1");
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QFileInfo("/proc/self/exe").canonicalFilePath(),
                    {"--gtest_filter=RecentRecordsTest.EqualDatesAreTrustedOnlyBeforeTheGenerationStarted"});
        ASSERT_TRUE(child.waitForFinished(60000)) << zone;
        EXPECT_EQ(child.exitCode(), 0) << zone << "\n" << child.readAll().toStdString();
    }
    // A start that can't be read leaves equal dates trusted, as ever.
    product->setLastModified("sometime");
    report = RepositoryReport::create();
    HostOperations host(report);
    EXPECT_TRUE(LibraryComparison(*report, store(), host).compareLibrary(*product, false));
    EXPECT_EQ(loggedCount(*report, "The timestamps matched! ("), 2);
}

} // namespace
} // namespace LibraryBrowser

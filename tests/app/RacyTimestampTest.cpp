// A library whose recorded date is not older than the generation that
// recorded it is compared by content as well: an edit within that same
// second keeps the date, and must not leave the product up to date for good.
// A file recorded with an older date keeps the plain date rule.

#include "TdlbProcess.h"

#include "support/Files.h"

namespace LibraryBrowser::Testing {
namespace {

class TdlbRacyTimestampTest : public UpdatedTdlbTest {
protected:
    std::string library() const { return (tdlb.root() + "/toolbox/wavecraft/wavecraft.tdlib.json").toStdString(); }

    // Gives Sine Wave's description the word, the file the same size and date.
    void edit(const QByteArray& word, const QDateTime& date) const
    {
        QByteArray bytes = readFile(library());
        const int at = bytes.indexOf("Produces a ");
        ASSERT_GE(at, 0);
        bytes.replace(at + 11, word.size(), word);
        writeFile(library(), bytes);
        setModified(library(), date);
    }

    bool wavecraftUpToDate() const
    {
        return tdlb.run({"list", "--json"}).jsonEntry("products", "wavecraft")["upToDate"].toBool();
    }

    QString sineDescription() const
    {
        return tdlb.run({"show", "--json", "wavecraft/Sources/Sine Wave"}).json()["description"].toString();
    }
};

TEST_F(TdlbRacyTimestampTest, AnEditInTheSecondOfTheRecordIsSeenAndAnOlderRecordKeepsTheDateRule)
{
    // A date not older than the generation's start: from the future, so
    // that the test does not race the clock.
    const QDateTime racy = QDateTime::currentDateTime().addSecs(300);
    edit("Sinusoid", racy);
    ok({"update"});
    ASSERT_TRUE(sineDescription().startsWith("Produces a Sinusoid")) << qPrintable(sineDescription());
    ASSERT_TRUE(wavecraftUpToDate());
    edit("SINUSOID", racy);
    EXPECT_FALSE(wavecraftUpToDate()) << "same size, same date, other content";
    ok({"update"});
    EXPECT_TRUE(sineDescription().startsWith("Produces a SINUSOID")) << qPrintable(sineDescription());
    EXPECT_TRUE(wavecraftUpToDate());

    // Recorded with a date older than its generation: the date is trusted
    // and the content not read, as always.
    const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
    edit("sinusoiD", old);
    ok({"update"});
    EXPECT_TRUE(sineDescription().startsWith("Produces a sinusoiD")) << qPrintable(sineDescription());
    edit("sinusoID", old);
    EXPECT_TRUE(wavecraftUpToDate());
    EXPECT_TRUE(sineDescription().startsWith("Produces a sinusoiD")) << qPrintable(sineDescription());
}

} // namespace
} // namespace LibraryBrowser::Testing

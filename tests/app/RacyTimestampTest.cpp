// A library whose recorded date is not older than the generation that
// recorded it is compared by content as well: an edit within that same
// second keeps the date, and must not leave the product up to date for good.
// A file recorded with an older date keeps the plain date rule.

#include "TdlbProcess.h"

#include "support/Files.h"

namespace LibraryBrowser::Testing {
namespace {

using TdlbRacyTimestampTest = UpdatedTdlbTest;

TEST_F(TdlbRacyTimestampTest, AnEditInTheSecondOfTheRecordIsSeenAndAnOlderRecordKeepsTheDateRule)
{
    const std::string library = (tdlb.root() + "/toolbox/wavecraft/wavecraft.tdlib.json").toStdString();
    // Gives Sine Wave's description the word, the file the same size and the date;
    // then, after an update if asked, whether wavecraft is up to date and, if so, the description shown.
    const auto edit = [&](const QByteArray& word, const QDateTime& date, bool update) {
        QByteArray bytes = readFile(library);
        const int at = bytes.indexOf("Produces a ");
        EXPECT_GE(at, 0);
        writeFile(library, bytes.replace(at + 11, word.size(), word));
        setModified(library, date);
        if (update)
            ok({"update"});
        const bool upToDate =
            tdlb.run({"list", "--json"}).jsonEntry("products", "wavecraft")["upToDate"].toBool();
        if (!upToDate)
            return QString("out of date");
        return "up to date: " + tdlb.run({"show", "--json", "wavecraft/Sources/Sine Wave"})
                                    .json()["description"].toString().left(19);
    };
    // A date not older than the generation's start: from the future, so
    // that the test does not race the clock.
    const QDateTime racy = QDateTime::currentDateTime().addSecs(300);
    EXPECT_EQ(edit("Sinusoid", racy, true), "up to date: Produces a Sinusoid");
    // Same size, same date, other content.
    EXPECT_EQ(edit("SINUSOID", racy, false), "out of date");
    EXPECT_EQ(edit("SINUSOID", racy, true), "up to date: Produces a SINUSOID");
    // Recorded with a date older than its generation: the date is trusted
    // and the content not read, as always.
    const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
    EXPECT_EQ(edit("sinusoiD", old, true), "up to date: Produces a sinusoiD");
    EXPECT_EQ(edit("sinusoID", old, false), "up to date: Produces a sinusoiD");
}

} // namespace
} // namespace LibraryBrowser::Testing

#include "LibraryFileParser.h"
#include "LibraryFileWriter.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

LibraryDocument oneBlock(const std::string& name)
{
    LibraryDocument document;
    document.name = name;
    BlockRecord gain;
    gain.name = "Gain";
    document.blocks = {gain};
    return document;
}

// Save As may name a folder that is not there yet; where no folder can be
// made, the save fails with the reason and the file beside it stays as it was.
TEST(LibraryFileSaveTest, SaveMakesTheMissingFolderOrFailsWithTheReason)
{
    QTemporaryDir root;
    const QString nested = root.path() + "/models/new/plant.tdlib.json";
    QString error;
    ASSERT_TRUE(LibraryFileWriter::save(oneBlock("plant"), nested, error)) << error.toStdString();
    FileIssue issue;
    const auto read = LibraryFileParser::parseFile(nested, "plant", issue);
    ASSERT_TRUE(read) << issue.toString();
    EXPECT_EQ(read->blocks.at(0).name, "Gain");

    const QString blocker = root.path() + "/models/new/plant.tdlib.json/inner.tdlib.json";
    EXPECT_FALSE(LibraryFileWriter::save(oneBlock("inner"), blocker, error));
    EXPECT_TRUE(error.startsWith("cannot make the directory ")) << error.toStdString();
    const auto again = LibraryFileParser::parseFile(nested, "plant", issue);
    ASSERT_TRUE(again) << issue.toString();
    EXPECT_EQ(again->name, "plant");
}

} // namespace

} // namespace LibraryBrowser::Host::Testing

#include "repository/xmlrepository/DirectoryReader.h"
#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Testing::writeFile;

// Files of directories met in turn, and again, read whole; a missing file, a
// directory and a directory that is missing fail with nothing read, and the
// next file is read all the same.
TEST(DirectoryReaderTest, ReadsEachFileFromItsDirectoryInAnyOrder)
{
    QTemporaryDir temp;
    const std::string base = temp.path().toStdString();
    const std::vector<std::pair<std::string, QByteArray>> files{
        {base + "/d1/f1icon.xml", "<svg>1</svg>"}, {base + "/d1/f2icon.xml", QByteArray(70000, 'x')},
        {base + "/d1/d2/f3icon.xml", "<svg>3</svg>"}, {base + "/d1/f4icon.xml", ""},
        {base + "/f5icon.xml", "<svg>5</svg>"}};
    for (const auto& [file, bytes] : files)
        writeFile(file, bytes);

    DirectoryReader reader;
    QByteArray bytes;
    for (const auto& [file, expected] : files) {
        EXPECT_TRUE(reader.read(file, bytes)) << file;
        EXPECT_EQ(bytes, expected) << file;
    }
    for (const std::string& refused : {base + "/d1/none.xml", base + "/d1/d2", base + "/gone/f1icon.xml"}) {
        bytes = "left over";
        EXPECT_FALSE(reader.read(refused, bytes)) << refused;
        EXPECT_TRUE(bytes.isEmpty()) << refused;
    }
    EXPECT_TRUE(reader.read(files[0].first, bytes));
    EXPECT_EQ(bytes, files[0].second);
}

} // namespace
} // namespace LibraryBrowser

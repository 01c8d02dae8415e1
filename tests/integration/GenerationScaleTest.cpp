#include "GenerationFixture.h"

#include "model/LibraryImpl.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "support/Files.h"

#include <QFile>

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using ProductListChangesTest = GenerationFixture;

std::vector<std::string> dependencySpecs(XMLRepositoryReader& reader, const std::string& product)
{
    std::vector<std::string> specs;
    if (const auto* node = dynamic_cast<const LibraryImpl*>(reader.getProduct(product).getImpl()))
        for (const FileInfo& info : node->getFileDependencies())
            specs.push_back(info.fileSpec);
    std::sort(specs.begin(), specs.end());
    return specs;
}

// Rewrites the file in place with bytes of the same length and puts its
// modification time back to the nanosecond: only the inode's change time
// tells that it changed.
void rewriteKeepingDate(const std::string& file, const std::string& from, const std::string& to)
{
    ASSERT_EQ(from.size(), to.size());
    struct stat before;
    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    QByteArray bytes = readFile(file);
    ASSERT_TRUE(bytes.contains(QByteArray::fromStdString(from)));
    bytes.replace(QByteArray::fromStdString(from), QByteArray::fromStdString(to));
    QFile out(QString::fromStdString(file));
    ASSERT_TRUE(out.open(QIODevice::ReadWrite));
    ASSERT_EQ(out.write(bytes), bytes.size());
    out.close();
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    struct stat after;
    ASSERT_EQ(::stat(file.c_str(), &after), 0);
    ASSERT_EQ(after.st_ino, before.st_ino);
    ASSERT_EQ(after.st_size, before.st_size);
}

// One writer, and so one host and one loaded top-level manifest, across
// every change: what discovery and the host keep between runs of a process
// must still let each change of a tdblocks.json through to the store, and
// leave the store's manifest file alone where nothing changed.
TEST_F(ProductListChangesTest, OneWriterSeesEveryChangeOfTheProductList)
{
    auto writer = makeWriter();
    writer->updateProducts();
    const std::string top = store() + "/toolbox/tandril/blocks/lbtoplevelmanifest.xml";
    const FileStamp listed = fileStamp(top);
    ASSERT_TRUE(listed.exists);
    writer->updateProducts();
    EXPECT_EQ(fileStamp(top), listed) << "nothing changed, yet the top-level manifest was written again";

    SCOPED_TRACE("a name edited in place, its size, inode and date kept");
    rewriteKeepingDate(root() + "/toolbox/kinetics/tdblocks.json", "\"Kinetics\"", "\"Kinetica\"");
    writer->updateProducts();
    EXPECT_EQ(makeReader()->getProduct("kinetics").getDisplayName(), "Kinetica");

    SCOPED_TRACE("a file dependency added");
    EXPECT_EQ(dependencySpecs(*makeReader(), "kinetics"),
              (std::vector<std::string>{"toolbox/kinetics/kinetics.tdlib.json"}));
    editRootFile("toolbox/kinetics/tdblocks.json", "\"kinetics.tdlib.json\"", "\"kinetics.tdlib.json\", \"tree.svg\"");
    writer->updateProducts();
    EXPECT_EQ(dependencySpecs(*makeReader(), "kinetics"),
              (std::vector<std::string>{"toolbox/kinetics/kinetics.tdlib.json", "toolbox/kinetics/tree.svg"}));
    // The model file's checksum is computed once for both of its records;
    // every other file still gets its own.
    writer->generateProduct(makeReader()->getProduct("kinetics"), GenerationMode::Regenerate);
    const auto generated = makeReader();
    const auto* kinetics = dynamic_cast<const LibraryImpl*>(generated->getProduct("kinetics").getImpl());
    ASSERT_TRUE(kinetics);
    ASSERT_EQ(kinetics->getFileDependencies().size(), 2u);
    for (const FileInfo& info : kinetics->getFileDependencies())
        EXPECT_EQ(info.checkSum, computeCheckSum(*report, root() + "/" + info.fileSpec)) << info.fileSpec;
    EXPECT_EQ(kinetics->getModelFileCheckSum(), kinetics->getFileDependencies().front().checkSum);

    SCOPED_TRACE("a product removed, and back");
    const QByteArray wavecraft = readFile(root() + "/toolbox/wavecraft/tdblocks.json");
    ASSERT_TRUE(QFile::remove(QString::fromStdString(root() + "/toolbox/wavecraft/tdblocks.json")));
    writer->updateProducts();
    auto paths = productPaths(*makeReader());
    EXPECT_EQ(std::count(paths.begin(), paths.end(), "wavecraft"), 0);
    writeRootFile("toolbox/wavecraft/tdblocks.json", wavecraft);
    writer->updateProducts();
    paths = productPaths(*makeReader());
    EXPECT_EQ(std::count(paths.begin(), paths.end(), "wavecraft"), 1);
}

} // namespace

#include "GenerationFixture.h"

#include "platform/Platform.h"
#include "repository/TandrilObjectIterator.h"
#include "support/Files.h"

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

// Passes every call on to the host, but gives one block a type that no
// library file may hold.
class UnknownTypeInterpreter : public HostInterpreter {
public:
    explicit UnknownTypeInterpreter(HostInterpreter& host) : m_host(host) {}

    CallResult callWithTrap(const std::string& function, int outputCount,
                            const std::vector<HostValue>& inputs) override
    {
        CallResult result = m_host.callWithTrap(function, outputCount, inputs);
        if (!inputs.empty() && inputs[0].toString() == "lb_getBlockData" && result.ok &&
            result.outputs.at(0).toString() == "Sum")
            result.outputs[3] = HostValue::string("Annotation");
        return result;
    }

private:
    HostInterpreter& m_host;
};

class GenerationFaultsTest : public GenerationFixture {
protected:
    // The store can be read, and every product but those hit reads back whole.
    void expectReadable(const std::vector<std::string>& hit)
    {
        const auto reader = makeReader();
        ASSERT_TRUE(reader->exists());
        for (const char* product : {"arithmetica", "kinetics", "switchyard", "tandril", "wavecraft"}) {
            if (std::find(hit.begin(), hit.end(), product) == hit.end()) {
                EXPECT_EQ(storedCounts(*reader, product), declaredCounts(product)) << product;
            }
        }
    }
};

} // namespace

TEST_F(GenerationFaultsTest, AnUnknownBlockTypeLeavesTheBlockOut)
{
    UnknownTypeInterpreter rewriting(Platform::interpreter());
    Platform::setInterpreter(&rewriting);
    generate();
    EXPECT_TRUE(logHas("??? **Error**   Invalid block type Annotation")) << logText();
    // The error does not reach the products after it.
    EXPECT_FALSE(logHas("The check sum of library 'Kinetics' was not updated."));

    const auto reader = makeReader();
    EXPECT_FALSE(reader->getTandrilObject("arithmetica/Basic Operations/Sum").isValid());
    TreeCounts expected = declaredCounts("arithmetica");
    --expected.blocks;
    EXPECT_EQ(storedCounts(*reader, "arithmetica"), expected);
    expectReadable({"arithmetica"});
    Platform::setInterpreter(nullptr);
}

namespace {

const char* const UnparseableLibrary = "{ \"format\": \"tandril-library\", broken";

// Generation over a store that already holds every product, with one
// library made unreadable for the host afterwards.
class FailedRegenerationTest : public GenerationFixture {
protected:
    void SetUp() override
    {
        GenerationFixture::SetUp();
        generate();
        declared = declaredCounts("wavecraft");
        ASSERT_GT(declared.blocks, 0);
        for (const char* kind : {"icons", "manifests"}) {
            archives[kind] = readFile(archiveOf("wavecraft", kind));
            ASSERT_FALSE(archives[kind].isEmpty()) << kind;
        }
        wavecraftFile = libraryFile("wavecraft").substr(root().size() + 1);
        original = readFile(libraryFile("wavecraft"));
        writeRootFile(wavecraftFile, UnparseableLibrary);
    }

    void expectArchivesAsBefore() const
    {
        for (const auto& [kind, bytes] : archives)
            EXPECT_EQ(readFile(archiveOf("wavecraft", kind.c_str())), bytes) << "the " << kind << " archive changed";
    }

    // The warning that says why, on one line.
    std::string keptLine() const
    {
        for (const std::string& line : report->getLog())
            if (line.find("Product Wavecraft Signals was not generated again (") != std::string::npos)
                return line;
        return std::string();
    }

    TreeCounts declared;
    std::map<std::string, QByteArray> archives;
    std::string wavecraftFile;
    QByteArray original;
};

} // namespace

TEST_F(FailedRegenerationTest, TheLastReadableArchivesStayAndTheProductStaysOutOfDate)
{
    generate();
    const std::string line = keptLine();
    ASSERT_FALSE(line.empty()) << logText();
    EXPECT_NE(line.find("wavecraft.tdlib.json"), std::string::npos) << "the reason names the file: " << line;
    expectArchivesAsBefore();

    const auto reader = makeReader();
    EXPECT_EQ(storedCounts(*reader, "wavecraft"), declared);
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources/Sine Wave").isValid());
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
    // A product that references Wavecraft can't be described either and
    // keeps its archives too; one that doesn't is done.
    EXPECT_TRUE(logHas("Product Kinetics was not generated again ("));
    EXPECT_TRUE(reader->isProductUpToDate(reader->getTandrilObject("arithmetica")));

    // Every later run tries again, and keeps them again while the file is broken.
    generate();
    EXPECT_TRUE(logHas("Entering Wavecraft")) << logText();
    EXPECT_FALSE(keptLine().empty());
    expectArchivesAsBefore();

    // Mended, the product is generated and its archives replaced.
    writeRootFile(wavecraftFile, QByteArray(original).replace("\"Sine Wave\"", "\"Sine Wave 2\""));
    generate();
    EXPECT_TRUE(keptLine().empty()) << logText();
    EXPECT_NE(readFile(archiveOf("wavecraft", "manifests")), archives.at("manifests"));
    const auto mended = makeReader();
    EXPECT_TRUE(mended->isProductUpToDate(mended->getTandrilObject("wavecraft")));
    EXPECT_TRUE(mended->getTandrilObject("wavecraft/Sources/Sine Wave 2").isValid());
}

TEST_F(FailedRegenerationTest, RegeneratingFromNothingKeepsThemToo)
{
    generate(GenerationMode::Regenerate);
    EXPECT_FALSE(keptLine().empty()) << logText();
    expectArchivesAsBefore();
    const auto reader = makeReader();
    EXPECT_EQ(storedCounts(*reader, "wavecraft"), declared);
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
    // A product that does not reference Wavecraft was made anew from nothing.
    EXPECT_EQ(storedCounts(*reader, "arithmetica"), declaredCounts("arithmetica"));

    // So does one product regenerated on its own.
    report = RepositoryReport::create();
    const auto writer = makeWriter();
    writer->generateProduct(reader->getTandrilObject("wavecraft").toLibrary(), GenerationMode::Regenerate);
    EXPECT_FALSE(keptLine().empty()) << logText();
    expectArchivesAsBefore();
    EXPECT_EQ(storedCounts(*makeReader(), "wavecraft"), declared);
}

#include "GenerationFixture.h"

#include "platform/Platform.h"
#include "support/Files.h"

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
    void expectWavecraftAsBefore()
    {
        for (const auto& [kind, bytes] : archives)
            EXPECT_EQ(readFile(archiveOf("wavecraft", kind.c_str())), bytes) << "the " << kind << " archive changed";
        const auto reader = makeReader();
        EXPECT_EQ(storedCounts(*reader, "wavecraft"), declared);
        EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
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
};

} // namespace

TEST_F(GenerationFaultsTest, AnUnknownBlockTypeLeavesTheBlockOut)
{
    UnknownTypeInterpreter rewriting(Platform::interpreter());
    Platform::setInterpreter(&rewriting);
    generate();
    Platform::setInterpreter(nullptr);
    EXPECT_TRUE(logHas("??? **Error**   Invalid block type Annotation")) << logText();
    // The error does not reach the products after it.
    EXPECT_FALSE(logHas("The check sum of library 'Kinetics' was not updated."));

    const auto reader = makeReader();
    EXPECT_FALSE(reader->getTandrilObject("arithmetica/Basic Operations/Sum").isValid());
    TreeCounts expected = declaredCounts("arithmetica");
    --expected.blocks;
    EXPECT_EQ(storedCounts(*reader, "arithmetica"), expected);
    for (const char* product : {"kinetics", "switchyard", "tandril", "wavecraft"})
        EXPECT_EQ(storedCounts(*reader, product), declaredCounts(product)) << product;
}

// A stored library the host can no longer read: every run, minimal or from
// nothing, whole or of that product alone, keeps the last readable archives
// and says why; mended, the product is generated again.
TEST_F(GenerationFaultsTest, AnUnreadableLibraryKeepsItsLastArchivesUntilMended)
{
    generate();
    declared = declaredCounts("wavecraft");
    ASSERT_GT(declared.blocks, 0);
    for (const char* kind : {"icons", "manifests"})
        archives[kind] = readFile(archiveOf("wavecraft", kind));
    const std::string wavecraftFile = libraryFile("wavecraft").substr(root().size() + 1);
    const QByteArray original = readFile(libraryFile("wavecraft"));
    writeRootFile(wavecraftFile, "{ \"format\": \"tandril-library\", broken");

    generate();
    const std::string line = keptLine();
    ASSERT_FALSE(line.empty()) << logText();
    EXPECT_NE(line.find("wavecraft.tdlib.json"), std::string::npos) << "the reason names the file: " << line;
    expectWavecraftAsBefore();
    auto reader = makeReader();
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources/Sine Wave").isValid());
    // A product that references Wavecraft can't be described either and
    // keeps its archives too; one that doesn't is done.
    EXPECT_TRUE(logHas("Product Kinetics was not generated again ("));
    EXPECT_TRUE(reader->isProductUpToDate(reader->getTandrilObject("arithmetica")));

    generate();
    EXPECT_TRUE(logHas("Entering Wavecraft")) << logText();
    EXPECT_FALSE(keptLine().empty());
    expectWavecraftAsBefore();

    generate(GenerationMode::Regenerate);
    EXPECT_FALSE(keptLine().empty()) << logText();
    expectWavecraftAsBefore();
    EXPECT_EQ(storedCounts(*makeReader(), "arithmetica"), declaredCounts("arithmetica"));

    report = RepositoryReport::create();
    makeWriter()->generateProduct(makeReader()->getTandrilObject("wavecraft").toLibrary(), GenerationMode::Regenerate);
    EXPECT_FALSE(keptLine().empty()) << logText();
    expectWavecraftAsBefore();

    writeRootFile(wavecraftFile, QByteArray(original).replace("\"Sine Wave\"", "\"Sine Wave 2\""));
    generate();
    EXPECT_TRUE(keptLine().empty()) << logText();
    EXPECT_NE(readFile(archiveOf("wavecraft", "manifests")), archives.at("manifests"));
    reader = makeReader();
    EXPECT_TRUE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources/Sine Wave 2").isValid());
}

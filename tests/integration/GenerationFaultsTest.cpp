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

TEST_F(GenerationFaultsTest, ALibraryFileTheHostCannotParse)
{
    writeRootFile("toolbox/switchyard/switchyard.tdlib.json", "{ \"format\": \"tandril-library\", broken");
    generate();
    EXPECT_TRUE(logHas("**Warning**   The check sum of library 'Switchyard' was not updated. At least one error "
                       "occurred in the generation process."))
        << logText();
    // Tandril's two references into Switchyard can't be described either.
    expectReadable({"switchyard", "tandril"});
    const auto reader = makeReader();
    EXPECT_TRUE(reader->getChildrenIterator(reader->getProduct("switchyard")).isEmpty());
    TreeCounts tandril = declaredCounts("tandril");
    tandril.references -= 2;
    EXPECT_EQ(storedCounts(*reader, "tandril"), tandril);

    // Still out of date, with Tandril: the next generation tries again.
    generate();
    EXPECT_TRUE(logHas("Entering Switchyard")) << logText();
    EXPECT_EQ(logCount("Product is up-to-date!"), 3);
}

TEST_F(GenerationFaultsTest, AnUnknownBlockTypeLeavesTheBlockOut)
{
    UnknownTypeInterpreter rewriting(Platform::interpreter());
    Platform::setInterpreter(&rewriting);
    generate();
    EXPECT_TRUE(logHas("??? **Error**   Invalid block type Annotation")) << logText();
    EXPECT_TRUE(logHas("The check sum of library 'Arithmetica' was not updated."));
    // The error does not reach the products after it.
    EXPECT_FALSE(logHas("The check sum of library 'Kinetics' was not updated."));
    EXPECT_FALSE(report->hasError());

    const auto reader = makeReader();
    EXPECT_FALSE(reader->getTandrilObject("arithmetica/Basic Operations/Sum").isValid());
    EXPECT_TRUE(reader->getTandrilObject("arithmetica/Basic Operations/Product").isValid());
    TreeCounts expected = declaredCounts("arithmetica");
    --expected.blocks;
    EXPECT_EQ(storedCounts(*reader, "arithmetica"), expected);
    expectReadable({"arithmetica"});
    Platform::setInterpreter(nullptr);
}

TEST_F(GenerationFaultsTest, ADamagedArchiveInTheStoreIsRebuilt)
{
    generate();
    writeFile(archiveOf("wavecraft", "manifests"), "this is not a zip archive");
    // Readable while damaged: the product just shows nothing.
    expectReadable({"wavecraft"});

    editRootFile("toolbox/wavecraft/wavecraft.tdlib.json", "\"Sources\"", "\"Sources \"");
    generate();
    EXPECT_TRUE(logHas("**Warning**   Unable to initialize archive ")) << logText();
    EXPECT_TRUE(logHas("Existing archive or product data might be corrupted. Destroying it and trying to "
                       "regenerate it."));
    const auto reader = makeReader();
    EXPECT_EQ(storedCounts(*reader, "wavecraft"), declaredCounts("wavecraft"));
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources ").isValid());
}

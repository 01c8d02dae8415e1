#include "WriterFixture.h"

#include "platform/ZipArchive.h"
#include "repository/TandrilObjectIterator.h"

namespace LibraryBrowser::Testing {

void WriterFixture::setAlphaAndBeta(int alphaBlocks, int betaBlocks)
{
    std::vector<ScriptedProduct> products{{"Alpha Library", "Alpha"}};
    libraries.setLibrary("Alpha", blocks("A", alphaBlocks));
    if (betaBlocks > 0) {
        products.push_back({"Beta Library", "Beta"});
        libraries.setLibrary("Beta", blocks("B", betaBlocks));
    }
    libraries.setProducts(std::move(products));
}

void WriterFixture::generate(GenerationMode mode)
{
    report = RepositoryReport::create();
    XMLRepositoryWriter(store(), report).generateRepository(mode);
}

std::unique_ptr<XMLRepositoryReader> WriterFixture::makeReader()
{
    return std::make_unique<XMLRepositoryReader>(store(), RepositoryReport::create());
}

std::vector<std::string> WriterFixture::entries(const std::string& product, const std::string& kind) const
{
    ZipArchive zip;
    if (!zip.open(archive(product, kind), ZipArchive::ReadOnly))
        return {};
    return zip.entryNames();
}

std::vector<std::string> WriterFixture::childNames(const std::string& id)
{
    const auto reader = makeReader();
    std::vector<std::string> names;
    for (TandrilObjectIterator it = reader->getChildrenIterator(reader->getTandrilObject(id)); it.isValidIterator();
         it.next())
        names.push_back(it.current().getName());
    return names;
}

std::vector<ScriptedBlock> WriterFixture::blocks(const std::string& prefix, int count)
{
    std::vector<ScriptedBlock> result;
    for (int i = 0; i < count; ++i)
        result.push_back({prefix + std::to_string(i)});
    return result;
}

} // namespace LibraryBrowser::Testing

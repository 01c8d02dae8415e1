#include "WriterFixture.h"

#include "platform/ZipArchive.h"
#include "repository/TandrilObjectIterator.h"

namespace LibraryBrowser::Testing {

void WriterFixture::generate(GenerationMode mode)
{
    report = RepositoryReport::create();
    makeWriter()->generateRepository(mode);
}

std::unique_ptr<XMLRepositoryWriter> WriterFixture::makeWriter()
{
    return std::make_unique<XMLRepositoryWriter>(store(), report);
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
    std::vector<std::string> names = zip.entryNames();
    zip.close();
    return names;
}

std::vector<std::string> WriterFixture::childNames(XMLRepositoryReader& reader, const std::string& id) const
{
    std::vector<std::string> names;
    for (TandrilObjectIterator it = reader.getChildrenIterator(reader.getTandrilObject(id)); it.isValidIterator();
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

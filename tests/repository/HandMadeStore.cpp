#include "HandMadeStore.h"

#include "platform/ZipArchive.h"

#include <QDir>

#include <algorithm>

namespace LibraryBrowser::Testing {

namespace {

template <class Impl>
Impl* addNode(Impl* node, const std::string& name, const std::string& path)
{
    node->setUniquePath(StringId(name));
    node->setName(name);
    node->setPath(path);
    node->setDisplayName(name);
    node->setDisplayPath(name);
    node->setProductName("Alpha");
    node->setDescription("About " + name);
    return node;
}

template <class Impl>
Impl* filled(Impl* node, const std::string& manifest)
{
    node->setIsEmpty(false);
    node->setIsFlat(false);
    node->setManifestFileSpec(manifest);
    return node;
}

void reference(Model& model, const std::string& name, const std::string& path, const std::string& target)
{
    auto* node = addNode(model.createLibraryRefImpl(), name, path);
    node->setIsEmpty(false);
    node->setLibraryRefName(target);
    node->setLibraryRefPath(target);
    node->setLibraryRefUniquePath(target);
}

} // namespace

void HandMadeStore::SetUp()
{
    StoreFixture::SetUp();
    writeStore(store());
    reader = openReader();
}

QByteArray HandMadeStore::svg(const std::string& label)
{
    return QByteArray::fromStdString("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\">"
                                     "<rect width=\"10\" height=\"10\"/><title>" +
                                     label + "</title></svg>");
}

void HandMadeStore::writeStore(const std::string& directory)
{
    auto top = Model::createModel();
    LibraryImpl* alpha = filled(addProduct(*top, "Alpha"), "Alpha/lbAlphamanifest.xml");
    alpha->setProductName("Alpha");
    LibraryImpl* shared = filled(addProduct(*top, "Alpha-Shared"), "Alpha/Shared/lbSharedmanifest.xml");
    shared->setPath("Shared");
    shared->setIsProduct(false);
    shared->setIsTopLevel(false);
    shared->setProductName("Alpha");
    alpha->getDependenciesPtr()->append(shared);
    filled(addProduct(*top, "Beta"), "Beta/lbBetamanifest.xml")->setProductName("Beta");
    PaletteImpl* tools = addNode(top->createPaletteImpl(), "Tools", "Tools");
    tools->setProductName("Tools");
    tools->setIsEmpty(false);
    tools->setChildren({"Beta", "Tools", "Nope"});
    saveManifest(*top, topLevelFile(directory));

    auto alphaChildren = Model::createModel();
    addNode(alphaChildren->createBlockImpl(), "Gain", "Alpha/Gain")->setIconFileSpec("icons/Gain.svg");
    addNode(alphaChildren->createBlockImpl(), "Scope", "Alpha/Scope")->setIconFileSpec("icons/Scope.svg");
    filled(addNode(alphaChildren->createSubSystemImpl(), "Sub", "Alpha/Sub"), "Alpha/Sub/lbSubmanifest.xml");
    reference(*alphaChildren, "Ref1", "Alpha/Ref1", "Alpha-Shared");
    reference(*alphaChildren, "Ref2", "Alpha/Ref2", "Alpha-Shared");

    auto subChildren = Model::createModel();
    addNode(subChildren->createBlockImpl(), "X", "Alpha/Sub/X");
    reference(*subChildren, "Back", "Alpha/Sub", "Alpha/Sub");

    auto sharedChildren = Model::createModel();
    addNode(sharedChildren->createBlockImpl(), "S1", "Shared/S1");
    addNode(sharedChildren->createBlockImpl(), "S2", "Shared/S2");

    auto betaChildren = Model::createModel();
    addNode(betaChildren->createBlockImpl(), "B1", "Beta/B1")->setProductName("Beta");

    alphaManifests = {{"Alpha/lbAlphamanifest.xml", alphaChildren->saveToBytes()},
                      {"Alpha/Sub/lbSubmanifest.xml", subChildren->saveToBytes()},
                      {"Alpha/Shared/lbSharedmanifest.xml", sharedChildren->saveToBytes()}};
    betaManifests = {{"Beta/lbBetamanifest.xml", betaChildren->saveToBytes()}};
    writeArchive(StoreFixture::archive(directory, "Alpha", "manifests"), alphaManifests);
    writeArchive(StoreFixture::archive(directory, "Alpha", "icons"), {{"icons/Gain.svg", svg("Gain")}});
    writeArchive(StoreFixture::archive(directory, "Beta", "manifests"), betaManifests);
}

void HandMadeStore::replaceManifest(const std::string& product, const std::string& entry, const QByteArray& bytes)
{
    Entries& entries = product == "Alpha" ? alphaManifests : betaManifests;
    entries[entry] = bytes;
    writeArchive(archive(product, "manifests"), entries);
}

void HandMadeStore::writeArchive(const std::string& file, const Entries& entries)
{
    QDir().mkpath(QFileInfo(QString::fromStdString(file)).absolutePath());
    ZipArchive archive;
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew)) << archive.errorString();
    for (const auto& entry : entries)
        ASSERT_TRUE(archive.add(entry.first, entry.second)) << entry.first;
    ASSERT_TRUE(archive.close()) << file;
}

std::vector<std::string> HandMadeStore::names(TandrilObjectIterator it, bool flat)
{
    std::vector<std::string> result;
    for (; it.isValidIterator(); it.next()) {
        const TandrilObject object = it.current();
        const std::string& id = object.id().str();
        const auto depth = flat ? 0 : std::count(id.begin(), id.end(), '/');
        result.push_back(std::string(std::size_t(depth) * 2, ' ') + object.getName());
    }
    return result;
}

} // namespace LibraryBrowser::Testing

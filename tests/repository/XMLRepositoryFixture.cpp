#include "XMLRepositoryFixture.h"

#include <QFileInfo>

namespace LibraryBrowser::Testing {

void XMLRepositoryFixture::makeShippedStore(std::initializer_list<const char*> names)
{
    auto model = Model::createModel();
    std::vector<ScriptedProduct> announced;
    for (const std::string name : names) {
        announced.push_back({name + " Library", name, "Product", {}, {}});
        addProduct(*model, name, "shipped-1");
        writeFile(archive(shipped(), name, "icons"), QByteArray::fromStdString("shipped icons of " + name));
        writeFile(archive(shipped(), name, "manifests"), QByteArray::fromStdString("shipped manifests of " + name));
    }
    libraries.setProducts(announced);
    saveManifest(*model, topLevelFile(shipped()));
    setModified(topLevelFile(shipped()), shippedDate);
}

XMLRepositoryPtr XMLRepositoryFixture::openRepository()
{
    return std::dynamic_pointer_cast<XMLRepository>(Repository::open(writable(), shipped(), {"/host/path"}));
}

std::string XMLRepositoryFixture::currentToken() const
{
    return QFileInfo(QString::fromStdString(topLevelFile(shipped()))).lastModified().toString(Qt::TextDate).toStdString();
}

} // namespace LibraryBrowser::Testing

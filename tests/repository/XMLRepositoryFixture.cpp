#include "XMLRepositoryFixture.h"

#include <QFileInfo>

namespace LibraryBrowser::Testing {

void XMLRepositoryFixture::makeShippedStore(std::initializer_list<const char*> names)
{
    auto model = Model::createModel();
    std::vector<ScriptedProduct> announced;
    for (const char* name : names) {
        announced.push_back({std::string(name) + " Library", name});
        addProduct(*model, name, "shipped-1");
        writeFile(archive(shipped(), name, "icons"), QByteArray("shipped icons of ") + name);
        writeFile(archive(shipped(), name, "manifests"), QByteArray("shipped manifests of ") + name);
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

std::string XMLRepositoryFixture::archive(const std::string& store, const std::string& product, const std::string& kind)
{
    return store + "/toolbox/" + product + "/lb_" + product + "_" + kind + "_repos.rps";
}

} // namespace LibraryBrowser::Testing

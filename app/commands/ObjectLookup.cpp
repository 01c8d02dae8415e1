#include "ObjectLookup.h"

#include <set>

namespace LibraryBrowser::Tdlb {

TandrilObject ObjectLookup::object(const QString& text) const
{
    const TandrilObject found = m_repository.getTandrilObject(text.toStdString());
    if (found.isValid())
        return found;
    const Library named = product(text);
    return named.isNull() ? found : TandrilObject(named);
}

Library ObjectLookup::product(const QString& text) const
{
    const std::string wanted = text.toStdString();
    for (const TandrilObject& candidate : products()) {
        if (candidate.getPath() == wanted || candidate.getName() == wanted || candidate.getDisplayName() == wanted)
            return candidate.toLibrary();
    }
    return Library();
}

std::vector<TandrilObject> ObjectLookup::products() const
{
    // The top level also lists the libraries that products reference, which
    // share a product's path: a product is shown once.
    std::vector<TandrilObject> list;
    std::set<std::string> paths;
    for (TandrilObjectIterator it = m_repository.getProductsIterator(); it.isValidIterator(); it.next()) {
        const TandrilObject product = it.current();
        if (product.getIsProduct() && paths.insert(product.getPath()).second)
            list.push_back(product);
    }
    return list;
}

QJsonObject ObjectLookup::summary(const TandrilObject& object)
{
    return QJsonObject{
        {"path", QString::fromStdString(object.getPath())},
        {"name", QString::fromStdString(object.getName())},
        {"displayName", QString::fromStdString(object.getDisplayName())},
        {"type", QString::fromStdString(object.getType())},
    };
}

} // namespace LibraryBrowser::Tdlb

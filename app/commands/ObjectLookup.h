#pragma once

#include "repository/Repository.h"

#include <QJsonObject>
#include <QString>

namespace LibraryBrowser::Tdlb {

// How a command line names repository objects: by unique path, and a
// product also by its name or shown name.
class ObjectLookup {
public:
    explicit ObjectLookup(Repository& repository) : m_repository(repository) {}

    // The valid object of the text, or an invalid one.
    TandrilObject object(const QString& text) const;
    // The valid product of the text, or a null handle.
    Library product(const QString& text) const;

    // Every product of the repository, in order.
    std::vector<TandrilObject> products() const;

    // The attributes every listing shows: path, name, shown name, type.
    static QJsonObject summary(const TandrilObject& object);

private:
    Repository& m_repository;
};

} // namespace LibraryBrowser::Tdlb

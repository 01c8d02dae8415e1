#pragma once

#include "StoreFixture.h"
#include "writer/ScriptedLibraries.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QDateTime>

#include <initializer_list>

namespace LibraryBrowser::Testing {

// A shipped store below the host root with a few products and their
// archives, and an empty place for the writable store below the preferences.
class XMLRepositoryFixture : public StoreFixture {
protected:
    // Writes the shipped top-level manifest, dated shippedDate, with one
    // product per name (lastModified "shipped-1") and both archives each;
    // the host announces the same products.
    void makeShippedStore(std::initializer_list<const char*> names);
    XMLRepositoryPtr openRepository();
    // The token line that matches the shipped manifest now.
    std::string currentToken() const;

    const QDateTime shippedDate = QDateTime::fromSecsSinceEpoch(1700000000);
    ScriptedLibraries libraries{interpreter, hostRoot()};
};

} // namespace LibraryBrowser::Testing

#pragma once

#include "repository/RepositoryReader.h"
#include "repository/RepositoryWriter.h"

#include <QObject>

#include <memory>
#include <string>

namespace LibraryBrowser {

// A reader and a writer at once: what the browser window and most scripts
// hold. Its two signals frame a product generated on demand while reading,
// so that the window can show progress; whole-repository and explicit
// product generation send neither.
class Repository : public QObject, public RepositoryWriter, public RepositoryReader {
    Q_OBJECT

public:
    // The id of the warning that the writable store can't be written and the
    // stores are read as they are; it is also said once on standard error.
    static constexpr const char* ReadOnlyWarningId = "Tandril:Repository:ReadOnlyPreferences";

    // Both bases ask for the report; one answer serves both.
    RepositoryReportPtr getRepositoryReport() const override = 0;

    // The repository on the default stores: the shipped one below the host's
    // root, the writable one below the user's preferences directory.
    static std::shared_ptr<Repository> open();
    static std::shared_ptr<Repository> open(const std::string& writableDirectory,
                                            const std::string& shippedDirectory,
                                            const std::vector<std::string>& hostPathList);

signals:
    // The product's display name.
    void preGenerateProduct(const std::string& displayName);
    // The product's display path.
    void postGenerateProduct(const std::string& displayPath);
};

using RepositoryPtr = std::shared_ptr<Repository>;

} // namespace LibraryBrowser

#pragma once

#include <string>

namespace LibraryBrowser {

class LibraryImpl;
class WriterContext;

// The records by which a stored library is later found up to date: its model
// file's name, size, date and checksum, and those of the files it depends on.
// Each update is one change set on the library's model.
class LibraryRecords {
public:
    explicit LibraryRecords(WriterContext& context) : m_context(context) {}

    // Name, size and date of the library's model file as the host gives it.
    void updateLibraryData(LibraryImpl& library);
    // Dates and sizes of the file dependencies as they are now; a file that
    // is gone leaves the list. Known checksums are kept.
    void updateFileDependencyDates(LibraryImpl& library);
    // The same, with each checksum computed afresh.
    void updateFileDependencyCheckSums(LibraryImpl& library);
    // The checksum of the model file, read now (empty if it can't be read),
    // and the file dependencies with their checksums afresh. The model file
    // is mostly a dependency too: it is read once.
    void updateCheckSums(LibraryImpl& library);

private:
    struct KnownCheckSum {
        std::string path;
        std::string checkSum;
    };
    void updateFileDependencies(LibraryImpl& library, bool withCheckSums, const KnownCheckSum* known = nullptr);

    WriterContext& m_context;
};

} // namespace LibraryBrowser

#pragma once

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
    // The checksum of the model file, read now; empty if it can't be read.
    void updateLibraryCheckSum(LibraryImpl& library);
    // Dates and sizes of the file dependencies as they are now; a file that
    // is gone leaves the list. Known checksums are kept.
    void updateFileDependencyDates(LibraryImpl& library);
    // The same, with each checksum computed afresh.
    void updateFileDependencyCheckSums(LibraryImpl& library);

private:
    void updateFileDependencies(LibraryImpl& library, bool withCheckSums);

    WriterContext& m_context;
};

} // namespace LibraryBrowser

#pragma once

#include <string>

namespace LibraryBrowser {

// Damage that a read met in a store's data (an archive that can't be
// opened, an entry whose checksum or parse fails), kept as one small file
// per product and store in the writable store, so that the next process
// finds the product stale and generates it again, whichever process met the
// damage. Nothing is ever written into the shipped store: damage of it is
// noted in the writable store too. Stores are known once a repository on
// them has been opened in this process; damage met in any other store is
// only reported.
class StoreDamage {
public:
    // Where the notes about both stores of a repository go.
    static void registerStores(const std::string& shippedDirectory, const std::string& writableDirectory);
    // Notes the damage of a product in a store, once: a later note on the
    // same product keeps the first reason.
    static void note(const std::string& storeDirectory, const std::string& productUniquePath,
                     const std::string& reason);
    // The reason noted for the product in the store, or the empty string.
    static std::string noted(const std::string& storeDirectory, const std::string& productUniquePath);
    // Forgets the note, once the product has been generated again.
    static void forget(const std::string& storeDirectory, const std::string& productUniquePath);
    // Forgets every note kept in a writable store, when it is seeded anew.
    static void forgetAll(const std::string& writableDirectory);

    // Why an archive of a registered store can't be read whole, or the
    // empty string. Each entry is read once for each size and date the
    // file has had: the writable store keeps, in "verified", the size and
    // date of each archive read whole or published, so that only a file
    // changed since is read again. Bytes changed inside an entry are found
    // so without a read having to meet them.
    static std::string archiveDamage(const std::string& storeDirectory, const std::string& archivePath);
    // Whether the archive is as the record of a registered store has it:
    // published by this store's writer or read whole after its product's
    // check, and not changed since. Such an archive needs no check again.
    static bool archiveVerified(const std::string& storeDirectory, const std::string& archivePath);
    // Records an archive just published as read whole.
    static void archiveWritten(const std::string& storeDirectory, const std::string& archivePath);
    // Writes the records changed since the last call, once for many
    // archives: a repository calls it when it closes. Records a process
    // never wrote only cost those archives a read again.
    static void saveRecords();

private:
    static std::string notesDirectory(const std::string& writableDirectory);
    // The note's file, or the empty string for a store not registered.
    static std::string noteFile(const std::string& storeDirectory, const std::string& productUniquePath);
};

} // namespace LibraryBrowser

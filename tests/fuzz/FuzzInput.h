#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace LibraryBrowser::Fuzz {

// The readers under test that only take a file name get the input through
// one scratch file per process, in a private directory that lives as long as
// the process.
QString scratchDirectory();
// Writes the bytes to `name` in the scratch directory and gives its path;
// aborts when the file cannot be written, since every later run would test
// nothing.
QString writeScratchFile(const QString& name, const uint8_t* data, std::size_t size);

inline QByteArray bytesOf(const uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

} // namespace LibraryBrowser::Fuzz

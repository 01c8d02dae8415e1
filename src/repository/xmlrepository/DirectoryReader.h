#pragma once

#include <QByteArray>

#include <string>

namespace LibraryBrowser {

// Reads whole files one after another, each named from its directory, which
// stays open while files of the same directory follow: a library's icons lie
// in a few directories, and a path walked again for each file cost more
// than its reading. For one pass over files just written into a directory
// of the process's own, which nothing replaces meanwhile.
class DirectoryReader {
public:
    DirectoryReader() = default;
    ~DirectoryReader();
    DirectoryReader(const DirectoryReader&) = delete;
    DirectoryReader& operator=(const DirectoryReader&) = delete;

    // As readFileBytes of the path.
    bool read(const std::string& path, QByteArray& bytes);

private:
    std::string m_directory;
    int m_descriptor = -1;
};

} // namespace LibraryBrowser

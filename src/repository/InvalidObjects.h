#pragma once

namespace LibraryBrowser {

class BlockImpl;
class LibraryImpl;

// The two placeholder nodes that a failed lookup hands back, each alone in a
// model of its own that is made on first use and lives as long as the
// process. Marked invalid, and named "InvalidBlock" and "InvalidLibrary" in
// name, path, display name and display path.
class InvalidObjects {
public:
    static BlockImpl* invalidBlock();
    static LibraryImpl* invalidLibrary();
};

} // namespace LibraryBrowser

#include "repository/Library.h"

namespace LibraryBrowser {

Library::Library(TandrilObjectImpl* node, ReaderCache* cache) : Handle(node, cache) {}

} // namespace LibraryBrowser

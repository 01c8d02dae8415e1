#include "repository/LibraryRef.h"

namespace LibraryBrowser {

LibraryRef::LibraryRef(TandrilObjectImpl* node, ReaderCache* cache) : Handle(node, cache) {}

} // namespace LibraryBrowser

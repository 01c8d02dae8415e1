#include "repository/Palette.h"

namespace LibraryBrowser {

Palette::Palette(TandrilObjectImpl* node, ReaderCache* cache) : Handle(node, cache) {}

} // namespace LibraryBrowser

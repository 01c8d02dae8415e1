#include "model/PaletteImpl.h"

#include "model/MetaModel.h"

namespace LibraryBrowser {

TDLB_DEFINE_NODE_CLASS(PaletteImpl, LibraryImpl)

} // namespace LibraryBrowser

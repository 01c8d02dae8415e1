#include "model/LibraryRefImpl.h"

#include "model/MetaModel.h"

namespace LibraryBrowser {

TDLB_DEFINE_NODE_CLASS(LibraryRefImpl, SubSystemImpl)

} // namespace LibraryBrowser

#include "model/BlockImpl.h"

#include "model/MetaModel.h"

namespace LibraryBrowser {

TDLB_DEFINE_NODE_CLASS(BlockImpl, TandrilObjectImpl)

} // namespace LibraryBrowser

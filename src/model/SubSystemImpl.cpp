#include "model/SubSystemImpl.h"

#include "model/MetaModel.h"

namespace LibraryBrowser {

TDLB_DEFINE_NODE_CLASS(SubSystemImpl, BlockImpl)

} // namespace LibraryBrowser

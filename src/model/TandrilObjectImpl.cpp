#include "model/TandrilObjectImpl.h"

#include "model/MetaModel.h"

namespace LibraryBrowser {

TDLB_DEFINE_NODE_CLASS(TandrilObjectImpl, Node)

} // namespace LibraryBrowser

#include "model/LibraryImpl.h"

#include "model/MetaModel.h"
#include "model/Model.h"
#include "model/NodeMap.h"

namespace LibraryBrowser {

TDLB_DEFINE_NODE_CLASS(LibraryImpl, SubSystemImpl)

void LibraryImpl::internalSwizzleNodePointers(const NodeMap& map)
{
    // The pointers still lead into the source model; find the copies of their
    // targets in this node's model, and drop what was not copied.
    auto rebind = [&](const LibraryImpl* source) -> LibraryImpl* {
        Model* model = getModel();
        if (!source || !model)
            return nullptr;
        return dynamic_cast<LibraryImpl*>(model->findNode(map.getDestIDForSourceID(source->id())));
    };
    if (m_product)
        setProduct(rebind(m_product));
    const LibraryImplList sources = m_dependencies;
    LibraryImplList rebound;
    for (const LibraryImpl* source : sources)
        if (LibraryImpl* target = rebind(source))
            rebound.append(target);
    setDependencies(rebound);
}

} // namespace LibraryBrowser

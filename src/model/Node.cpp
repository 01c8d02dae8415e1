#include "model/Node.h"

#include "model/MetaNode.h"
#include "model/Model.h"

namespace LibraryBrowser {

StringId Node::getSuperTypeName() const
{
    const MetaNode* super = metaNode().superClass();
    return super ? super->typeName() : StringId();
}

const StringId& Node::getDomain()
{
    static const StringId domain("zq.glue.graph.librarybrowser");
    return domain;
}

void Node::markDirty()
{
    m_dirty = true;
    if (m_model)
        m_model->noteChange();
}

} // namespace LibraryBrowser

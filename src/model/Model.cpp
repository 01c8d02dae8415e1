#include "model/Model.h"

#include "model/MetaModel.h"
#include "model/Serializer.h"

namespace LibraryBrowser {

Model::Model() : m_signature(Signature::manifestSchema()) {}

Model::~Model() = default;

std::shared_ptr<Model> Model::createModel()
{
    return std::make_shared<Model>();
}

const MetaModel& Model::staticGetType()
{
    return MetaModel::instance();
}

const StringId& Model::staticGetTypeName()
{
    static const StringId name("Model");
    return name;
}

TandrilObjectImpl* Model::createNodeIntoModel(const StringId& typeName, Model* model)
{
    if (!model)
        return nullptr;
    if (typeName == BlockImpl::staticGetTypeName())
        return model->createBlockImpl();
    if (typeName == SubSystemImpl::staticGetTypeName())
        return model->createSubSystemImpl();
    if (typeName == LibraryImpl::staticGetTypeName())
        return model->createLibraryImpl();
    if (typeName == LibraryRefImpl::staticGetTypeName())
        return model->createLibraryRefImpl();
    if (typeName == PaletteImpl::staticGetTypeName())
        return model->createPaletteImpl();
    return nullptr;
}

void Model::adopt(std::unique_ptr<TandrilObjectImpl> node)
{
    node->m_id = unsigned(m_owned.size() + 1);
    ++m_revision;
    m_nodes.append(node.get());
    m_owned.push_back(std::move(node));
}

TandrilObjectImpl* Model::findNode(unsigned id) const
{
    return id >= 1 && id <= m_owned.size() ? m_owned[id - 1].get() : nullptr;
}

void Model::removeNode(TandrilObjectImpl* node)
{
    if (!node || node->getModel() != this || findNode(node->id()) != node)
        return;
    m_nodes.removeOnce(node);
    m_removed.push_back(std::move(m_owned[node->id() - 1]));
    ++m_revision;
}

void Model::removeAllNodes()
{
    // Nothing can refer to the old ids any more; a reloaded model numbers its
    // nodes from 1 again, as the document did.
    m_nodes.clear();
    m_owned.clear();
    ++m_revision;
}

void Model::removeNodesCreatedAfter(std::size_t count)
{
    while (m_owned.size() > count) {
        TandrilObjectImpl* node = m_owned.back().get();
        if (node && !m_nodes.isEmpty() && m_nodes.back() == node)
            m_nodes.pop_back();
        else if (node)
            m_nodes.removeOnce(node);
        m_owned.pop_back();
        ++m_revision;
    }
}

bool Model::load(const std::string& path, ErrorHolder& errors)
{
    removeAllNodes();
    beginChangeSet();
    const bool ok = Serializer::loadFromFile(*this, path, errors);
    commitChangeSet();
    return ok;
}

bool Model::loadFromBytes(const QByteArray& bytes, ErrorHolder& errors)
{
    removeAllNodes();
    beginChangeSet();
    const bool ok = Serializer::loadFromByteArray(*this, bytes, errors);
    commitChangeSet();
    return ok;
}

bool Model::save(const std::string& path, ErrorHolder& errors, int options) const
{
    return Serializer::saveToFile(*this, path, errors, options);
}

QByteArray Model::saveToBytes(int options) const
{
    return Serializer::saveToByteArray(*this, options);
}

void Model::beginChangeSet()
{
    if (m_changeSetDepth++ == 0)
        m_changes = 0;
}

bool Model::commitChangeSet()
{
    if (m_changeSetDepth == 0)
        return false;
    --m_changeSetDepth;
    return m_changes > 0;
}

} // namespace LibraryBrowser

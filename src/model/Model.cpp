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
    node->m_id = m_nextId++;
    m_nodes.append(node.get());
    m_owned.emplace(node->m_id, std::move(node));
}

TandrilObjectImpl* Model::findNode(unsigned id) const
{
    auto it = m_owned.find(id);
    return it == m_owned.end() ? nullptr : it->second.get();
}

void Model::removeNode(TandrilObjectImpl* node)
{
    if (!node || node->getModel() != this)
        return;
    m_nodes.removeOnce(node);
    m_owned.erase(node->id());
}

void Model::removeAllNodes()
{
    m_nodes.clear();
    m_owned.clear();
    // Nothing can refer to the old ids any more; a reloaded model numbers its
    // nodes as the document did.
    m_nextId = 1;
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

#pragma once

#include "model/LibraryRefImpl.h"
#include "model/PaletteImpl.h"
#include "model/Signature.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

class ErrorHolder;
class MetaModel;

using TandrilObjectImplList = NodeList<TandrilObjectImpl>;
using BlockImplList = NodeList<BlockImpl>;
using SubSystemImplList = NodeList<SubSystemImpl>;
using LibraryRefImplList = NodeList<LibraryRefImpl>;
using PaletteImplList = NodeList<PaletteImpl>;

// One manifest in memory: the nodes it owns, in order of creation, and the
// schema signature it is written with. Shared through ModelPtr.
class Model {
public:
    enum SaveOption { Compact = 0, Indented = 1 };

    Model();
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    static std::shared_ptr<Model> createModel();
    static const MetaModel& staticGetType();
    static const StringId& staticGetTypeName();
    const Signature& signature() const { return m_signature; }

    BlockImpl* createBlockImpl() { return create<BlockImpl>(); }
    SubSystemImpl* createSubSystemImpl() { return create<SubSystemImpl>(); }
    LibraryImpl* createLibraryImpl() { return create<LibraryImpl>(); }
    LibraryRefImpl* createLibraryRefImpl() { return create<LibraryRefImpl>(); }
    PaletteImpl* createPaletteImpl() { return create<PaletteImpl>(); }

    static BlockImpl* createBlockImplIntoModel(Model* model) { return model->createBlockImpl(); }
    static SubSystemImpl* createSubSystemImplIntoModel(Model* model) { return model->createSubSystemImpl(); }
    static LibraryImpl* createLibraryImplIntoModel(Model* model) { return model->createLibraryImpl(); }
    static LibraryRefImpl* createLibraryRefImplIntoModel(Model* model) { return model->createLibraryRefImpl(); }
    static PaletteImpl* createPaletteImplIntoModel(Model* model) { return model->createPaletteImpl(); }

    TandrilObjectImpl* createNode(const StringId& typeName) { return createNodeIntoModel(typeName, this); }
    // A new node of the named class, or null for a name that is not a
    // creatable class (TandrilObjectImpl included: it is abstract in manifests).
    static TandrilObjectImpl* createNodeIntoModel(const StringId& typeName, Model* model);

    const TandrilObjectImplList& getNodes() const { return m_nodes; }
    int nodeCount() const { return m_nodes.size(); }
    TandrilObjectImpl* findNode(unsigned id) const;
    // Takes the node out of the model; it is destroyed with the model, so
    // that a pointer still held to it stays safe to read until then.
    void removeNode(TandrilObjectImpl* node);
    void removeAllNodes();
    // Nodes made so far, removed ones included: the next node's id is this + 1.
    std::size_t createdCount() const { return m_owned.size(); }
    // Destroys the nodes made after the first `count`, so that ids number on
    // from there as if they had never been made.
    void removeNodesCreatedAfter(std::size_t count);

    // Loses the model's nodes first, also when the load then fails.
    bool load(const std::string& path, ErrorHolder& errors);
    bool loadFromBytes(const QByteArray& bytes, ErrorHolder& errors);
    bool save(const std::string& path, ErrorHolder& errors, int options = Compact) const;
    QByteArray saveToBytes(int options = Compact) const;

    // Changes that belong together are bracketed; brackets nest. Commit
    // answers whether any node changed since the outermost begin.
    void beginChangeSet();
    bool commitChangeSet();
    bool isChangeSetOpen() const { return m_changeSetDepth > 0; }
    // Goes up with every change of a node and every node made or taken out:
    // equal at two moments, nothing in the model changed between them.
    std::uint64_t revision() const { return m_revision; }

private:
    friend class Node;

    template <class T>
    T* create()
    {
        auto node = std::make_unique<T>(this);
        T* raw = node.get();
        adopt(std::move(node));
        return raw;
    }
    void adopt(std::unique_ptr<TandrilObjectImpl> node);
    void noteChange()
    {
        ++m_changes;
        ++m_revision;
    }

    Signature m_signature;
    TandrilObjectImplList m_nodes;
    // Ids are handed out densely from 1, so the owner table is indexed by id - 1;
    // a removed node leaves an empty slot.
    std::vector<std::unique_ptr<TandrilObjectImpl>> m_owned;
    // Removed nodes live as long as the model: handles of the caches may
    // still point at them until the caches let go of this model.
    std::vector<std::unique_ptr<TandrilObjectImpl>> m_removed;
    int m_changeSetDepth = 0;
    int m_changes = 0;
    std::uint64_t m_revision = 0;
};

using ModelPtr = std::shared_ptr<Model>;

} // namespace LibraryBrowser

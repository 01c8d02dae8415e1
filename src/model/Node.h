#pragma once

#include "platform/SmallObjectPool.h"
#include "platform/StringId.h"

#include <memory>
#include <utility>
#include <vector>

namespace LibraryBrowser {

template <class T>
class NodeList;

class MetaNode;
class Model;
class NodeMap;

// A node of a model: a numeric id unique in its model, a dirty mark, and the
// meta node that describes its properties. The model owns its nodes.
class Node {
public:
    // A walk of a large store frees and makes nodes by the thousand.
    TDLB_POOLED_ALLOCATION

    Node() = default;
    explicit Node(Model* model) : m_model(model) {}
    virtual ~Node() = default;

    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    Model* getModel() const { return m_model; }
    unsigned id() const { return m_id; }

    virtual const StringId& getTypeName() const = 0;
    virtual const MetaNode& metaNode() const = 0;
    // The type name of the class above, or the empty id at the root.
    StringId getSuperTypeName() const;
    static const StringId& getDomain();

    // A node of the same class outside any model, with the same properties.
    virtual std::unique_ptr<Node> clone() const = 0;
    // Copies the properties that both classes have; a source of another class
    // is copied as far as the nearest common class goes.
    virtual void copyPropertiesFromNode(const Node*) {}
    // The same without the properties that point at other nodes.
    virtual void copyNonStructuralPropertiesFromNode(const Node*) {}
    // Rebinds node pointers after this node was copied from another model.
    virtual void internalSwizzleNodePointers(const NodeMap&) {}

    bool isDirty() const { return m_dirty; }
    void markDirty();
    void clearDirty() { m_dirty = false; }

protected:
    template <class T, class Value>
    void assignProperty(T& field, Value&& value);

private:
    friend class Model;
    Model* m_model = nullptr;
    unsigned m_id = 0;
    bool m_dirty = false;
};

template <class T>
struct AlwaysMarksDirty {
    static constexpr bool value = false;
};

// Container properties count as changed whenever they are set.
template <class T>
struct AlwaysMarksDirty<std::vector<T>> {
    static constexpr bool value = true;
};

template <class T>
struct AlwaysMarksDirty<NodeList<T>> {
    static constexpr bool value = true;
};

template <class T, class Value>
void Node::assignProperty(T& field, Value&& value)
{
    if (AlwaysMarksDirty<T>::value || !(field == value)) {
        markDirty();
        field = std::forward<Value>(value);
    }
}

} // namespace LibraryBrowser

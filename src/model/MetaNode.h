#pragma once

#include "model/PropertyBase.h"
#include "platform/StringId.h"

#include <QString>
#include <QStringView>

#include <memory>
#include <vector>

namespace LibraryBrowser {

// The description of one node class: its type name, its super class and its
// properties in registration order (the super class's first).
class MetaNode {
public:
    explicit MetaNode(const StringId& typeName) : m_typeName(typeName) {}

    const StringId& typeName() const { return m_typeName; }
    const MetaNode* superClass() const { return m_superClass; }
    void setSuperClass(const MetaNode* super) { m_superClass = super; }
    // True for this class and every class below it.
    bool isKindOf(const MetaNode& other) const;

    void appendProperty(std::unique_ptr<PropertyBase> property);
    const std::vector<std::unique_ptr<PropertyBase>>& properties() const { return m_properties; }
    const std::vector<int>& propertyIndices() const { return m_indices; }
    const std::vector<StringId>& propertyNames() const { return m_names; }

    const PropertyBase* findProperty(const StringId& name) const;
    // Lookup by the text of a document's attribute name. Documents list
    // properties in registration order, so the search starts after `hint`.
    const PropertyBase* findProperty(QStringView name, std::size_t& hint) const;

private:
    StringId m_typeName;
    const MetaNode* m_superClass = nullptr;
    std::vector<std::unique_ptr<PropertyBase>> m_properties;
    std::vector<int> m_indices;
    std::vector<StringId> m_names;
    std::vector<QString> m_qtNames;
};

} // namespace LibraryBrowser

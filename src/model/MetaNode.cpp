#include "model/MetaNode.h"

namespace LibraryBrowser {

bool MetaNode::isKindOf(const MetaNode& other) const
{
    for (const MetaNode* m = this; m; m = m->m_superClass)
        if (m == &other)
            return true;
    return false;
}

void MetaNode::appendProperty(std::unique_ptr<PropertyBase> property)
{
    m_names.push_back(property->name());
    m_qtNames.push_back(QString::fromStdString(property->name().str()));
    m_indices.push_back(-1);
    m_properties.push_back(std::move(property));
}

const PropertyBase* MetaNode::findProperty(const StringId& name) const
{
    for (std::size_t i = 0; i < m_names.size(); ++i)
        if (m_names[i] == name)
            return m_properties[i].get();
    return nullptr;
}

const PropertyBase* MetaNode::findProperty(QStringView name, std::size_t& hint) const
{
    const std::size_t n = m_qtNames.size();
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t i = (hint + k) % n;
        if (m_qtNames[i] == name) {
            hint = i + 1;
            return m_properties[i].get();
        }
    }
    return nullptr;
}

} // namespace LibraryBrowser

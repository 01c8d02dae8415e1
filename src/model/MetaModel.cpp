#include "model/MetaModel.h"

#include "model/LibraryRefImpl.h"
#include "model/PaletteImpl.h"
#include "model/StaticProperty.h"

namespace LibraryBrowser {

namespace {

template <class Class, class Type>
std::unique_ptr<PropertyBase> makeProperty(const char* name, const char* valueType, bool structural,
                                           const Type& (Class::*getter)() const,
                                           void (Class::*setter)(const Type&),
                                           void (Class::*moveSetter)(Type&&), Type defaultValue)
{
    return std::make_unique<StaticProperty<Class, Type>>(name, valueType, structural, getter, setter,
                                                         moveSetter, defaultValue);
}

} // namespace

const MetaModel& MetaModel::instance()
{
    static const MetaModel model;
    return model;
}

MetaModel::MetaModel() : m_name("Model")
{
#define TDLB_REGISTER_PROPERTY(name, Name, Type, def, structural)                                     \
    meta.appendProperty(makeProperty<Self, Type>(#name, #Type, structural, &Self::get##Name,          \
                                                 &Self::set##Name, &Self::set##Name, def));
#define TDLB_REGISTER_CLASS(Class, Parent)                                                             \
    {                                                                                                  \
        using Self = Class;                                                                            \
        MetaNode& meta = createMetaNode(StringId(#Class));                                             \
        TDLB_##Class##_ALL(TDLB_REGISTER_PROPERTY)                                                     \
    }
    TDLB_NODE_CLASSES(TDLB_REGISTER_CLASS)
#undef TDLB_REGISTER_CLASS
#undef TDLB_REGISTER_PROPERTY

#define TDLB_DECLARE_SUPER(Class, Parent)                                                              \
    mutableMetaNode(StringId(#Class))->setSuperClass(metaNode(StringId(#Parent)));
    TDLB_NODE_CLASSES(TDLB_DECLARE_SUPER)
#undef TDLB_DECLARE_SUPER
}

MetaNode& MetaModel::createMetaNode(const StringId& typeName)
{
    m_nodes.push_back(std::make_unique<MetaNode>(typeName));
    return *m_nodes.back();
}

const MetaNode* MetaModel::metaNode(const StringId& typeName) const
{
    for (const auto& node : m_nodes)
        if (node->typeName() == typeName)
            return node.get();
    return nullptr;
}

MetaNode* MetaModel::mutableMetaNode(const StringId& typeName)
{
    for (auto& node : m_nodes)
        if (node->typeName() == typeName)
            return node.get();
    return nullptr;
}

} // namespace LibraryBrowser

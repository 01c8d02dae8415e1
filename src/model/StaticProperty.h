#pragma once

#include "model/LoadContext.h"
#include "model/NodeList.h"
#include "model/PropertyBase.h"
#include "model/ValueText.h"

#include <type_traits>

namespace LibraryBrowser {

namespace PropertyKinds {
template <class T>
struct IsNodeList : std::false_type {};
template <class T>
struct IsNodeList<NodeList<T>> : std::true_type {
    using Element = T;
};
} // namespace PropertyKinds

// A property reached through a class's generated getter and setter.
template <class Class, class Type>
class StaticProperty : public PropertyBase {
public:
    using Getter = const Type& (Class::*)() const;
    using Setter = void (Class::*)(const Type&);
    // The setter that takes over a value read from text.
    using MoveSetter = void (Class::*)(Type&&);

    StaticProperty(const char* name, const char* valueType, bool structural, Getter getter, Setter setter,
                   MoveSetter moveSetter, Type defaultValue)
        : PropertyBase(name, valueType, structural), m_get(getter), m_set(setter), m_move(moveSetter),
          m_default(defaultValue) {}

    std::string getPropAsString(const Node& node) const override { return text(value(node)); }

    const std::string* textIfStored(const Node& node) const override
    {
        if constexpr (std::is_same_v<Type, std::string>)
            return &value(node);
        else if constexpr (std::is_same_v<Type, StringId> || std::is_same_v<Type, SharedText>)
            return &value(node).str();
        else
            return nullptr;
    }

    std::string defaultValueAsString() const override { return text(m_default); }

    bool hasDefaultValue(const Node& node) const override { return value(node) == m_default; }

    bool setPropFromString(Node& node, const std::string& input, LoadContext& context,
                           std::string& error) const override
    {
        auto& target = static_cast<Class&>(node);
        if constexpr (std::is_pointer_v<Type>) {
            std::vector<unsigned> ids;
            if (!ValueText::idsFromText(input, ids) || ids.size() != 1)
                return invalid(input, error);
            (target.*m_set)(nullptr);
            // The binders keep the setter itself, not the property: they need
            // nothing else of it, and GCC's vptr check, for a lambda in a
            // template that reaches a member through a captured `this`, tests
            // the closure in place of the property and stops the program.
            context.deferReference(ids, [&target, set = m_set](const std::vector<Node*>& nodes) {
                (target.*set)(dynamic_cast<Type>(nodes.front()));
            });
        } else if constexpr (PropertyKinds::IsNodeList<Type>::value) {
            using Element = typename PropertyKinds::IsNodeList<Type>::Element;
            std::vector<unsigned> ids;
            if (!ValueText::idsFromText(input, ids))
                return invalid(input, error);
            context.deferReference(ids, [&target, set = m_set](const std::vector<Node*>& nodes) {
                Type list;
                for (Node* n : nodes)
                    if (auto* element = dynamic_cast<Element*>(n))
                        list.append(element);
                (target.*set)(list);
            });
        } else if constexpr (std::is_same_v<Type, std::string>) {
            // Text is its own text form: set as it stands, without a copy to read it into.
            (target.*m_set)(input);
        } else {
            Type parsed{};
            if (!ValueText::fromText(input, parsed))
                return invalid(input, error);
            (target.*m_move)(std::move(parsed));
        }
        return true;
    }

private:
    const Type& value(const Node& node) const { return (static_cast<const Class&>(node).*m_get)(); }

    static std::string text(const Type& v)
    {
        if constexpr (std::is_pointer_v<Type>) {
            return std::to_string(v ? v->id() : 0u);
        } else if constexpr (PropertyKinds::IsNodeList<Type>::value) {
            std::vector<unsigned> ids;
            for (auto* n : v)
                ids.push_back(n ? n->id() : 0u);
            return ValueText::idsToText(ids);
        } else {
            return ValueText::toText(v);
        }
    }

    bool invalid(const std::string& input, std::string& error) const
    {
        error = "Invalid value '" + input.substr(0, 80) + "' for property '" + name().str() + "'";
        return false;
    }

    Getter m_get;
    Setter m_set;
    MoveSetter m_move;
    Type m_default;
};

} // namespace LibraryBrowser

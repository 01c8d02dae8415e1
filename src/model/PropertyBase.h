#pragma once

#include "platform/StringId.h"

#include <string>

namespace LibraryBrowser {

class LoadContext;
class Node;

// One property of a node class: its name, the text form of its value, its
// default. Generated for every property of the manifest schema.
class PropertyBase {
public:
    PropertyBase(const char* name, const char* valueType, bool structural)
        : m_name(name), m_valueType(valueType), m_structural(structural) {}
    virtual ~PropertyBase() = default;

    const StringId& name() const { return m_name; }
    const StringId& valueTypeName() const { return m_valueType; }
    // Holds pointers to other nodes of the same model.
    bool isStructural() const { return m_structural; }
    bool isNodeType() const { return m_structural; }

    virtual std::string getPropAsString(const Node& node) const = 0;
    // The value itself where its text form is the text it holds (strings and
    // interned strings), so that a writer need not copy it; null otherwise.
    virtual const std::string* textIfStored(const Node& node) const = 0;
    // Reads the text form. Node references are handed to the context, which
    // binds them once every node of the document exists. False with a reason
    // in `error` for a text that is not a value of the property's type.
    virtual bool setPropFromString(Node& node, const std::string& text, LoadContext& context,
                                   std::string& error) const = 0;
    virtual std::string defaultValueAsString() const = 0;
    virtual bool hasDefaultValue(const Node& node) const = 0;

private:
    StringId m_name;
    StringId m_valueType;
    bool m_structural;
};

} // namespace LibraryBrowser

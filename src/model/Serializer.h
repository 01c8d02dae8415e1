#pragma once

#include "model/Signature.h"

#include <QByteArray>

#include <string>

class QIODevice;

namespace LibraryBrowser {

class ErrorHolder;
class Model;

// Manifests to and from XML. The form (see docs/manifest-format.md):
//
//   <?xml version="1.0" encoding="UTF-8"?>
//   <tdlb-manifest format="1" signature="82d9731a..." domain="...">
//     <LibraryImpl id="1" uniquePath="Tandril" name="Tandril" children="[Gain,Sum]"/>
//     <BlockImpl id="2" uniquePath="Tandril/Gain" .../>
//   </tdlb-manifest>
//
// One empty element per node, named by its type; its attributes are the
// properties that differ from their defaults, in their text forms. Nothing
// here throws: every failure lands in the error holder.
class Serializer {
public:
    static bool loadFromFile(Model& model, const std::string& path, ErrorHolder& errors);
    static bool loadFromByteArray(Model& model, const QByteArray& bytes, ErrorHolder& errors);
    static bool saveToFile(const Model& model, const std::string& path, ErrorHolder& errors, int options);
    static QByteArray saveToByteArray(const Model& model, int options);
    // A document already serialized, written as saveToFile writes one.
    static bool saveBytesToFile(const QByteArray& bytes, const std::string& path, ErrorHolder& errors);

    // The signature a document carries, read from its root element without
    // building a model; works for documents of any schema. Null on failure.
    static Signature getModelSignatureFromByteArray(const QByteArray& bytes, ErrorHolder& errors);

    static const char* rootElementName() { return "tdlb-manifest"; }
    static int formatVersion() { return 1; }

private:
    static bool load(Model& model, QIODevice& device, const std::string& origin, ErrorHolder& errors);
};

} // namespace LibraryBrowser

#pragma once

#include <QByteArray>

namespace LibraryBrowser {

class Model;

// Reads a manifest in the plain form that the serializer writes, straight
// from its UTF-8 bytes: no UTF-16 text, no attribute objects, property
// names matched as bytes. Reading manifests is most of the time of a cold
// search or tree, and the general XML reader spends most of that on
// tokenizing and converting text the plain form never needs.
//
// It declines rather than judges: anything outside the plain form (a
// comment, a DOCTYPE, an entity it doesn't know, a literal line break in a
// value, text that is not well-formed UTF-8, an unknown name, a value that
// doesn't read, a repeated attribute) leaves the model as it was and
// returns false, and the caller reads the document with the full XML
// reader, which also words the errors and warnings.
class ManifestScanner {
public:
    // True when the whole document went into `model`; its nodes are then
    // numbered on after those it had, as the full reader would number them.
    static bool scan(Model& model, const QByteArray& bytes);
};

} // namespace LibraryBrowser

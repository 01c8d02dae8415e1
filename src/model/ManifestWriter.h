#pragma once

#include <QByteArray>

namespace LibraryBrowser {

class Model;

// Writes a model in the serializer's form straight from the nodes' UTF-8
// text: the bytes a general XML stream writer with auto-formatting gives
// for the same elements and attributes, without converting every value to
// UTF-16 and back. The values are escaped as that writer escapes them:
// markup characters and the three blanks as references, other control
// characters and U+FFFE/U+FFFF left out, text that is not well-formed
// UTF-8 (and a leading byte order mark) decoded with replacement
// characters first, as Qt's conversion of a std::string decodes it.
class ManifestWriter {
public:
    // `indent` blanks per level; one element per line in any case.
    static QByteArray write(const Model& model, int indent);
};

} // namespace LibraryBrowser

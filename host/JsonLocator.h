#pragma once

#include "FieldPath.h"

#include <QByteArray>

namespace LibraryBrowser::Host {

// Finds where things are in JSON text. The document model keeps no
// positions, so when an error needs one this scans the text again; it costs
// nothing while files are valid.
class JsonLocator {
public:
    struct Position {
        int line = 1;
        int column = 1;
    };

    explicit JsonLocator(const QByteArray& text) : m_text(text) {}

    // Line and column (counted in characters) of a byte offset.
    Position positionOfOffset(qsizetype offset) const;
    // Where the value at the field path begins; for a field that is missing,
    // where the closest enclosing value that exists begins.
    Position positionOf(const FieldPath& field) const;

private:
    qsizetype find(const FieldPath& field) const;
    qsizetype skipSpace(qsizetype at) const;
    qsizetype skipString(qsizetype at) const;
    qsizetype skipValue(qsizetype at, int depth) const;
    QByteArray readKey(qsizetype at) const;

    const QByteArray& m_text;
};

} // namespace LibraryBrowser::Host

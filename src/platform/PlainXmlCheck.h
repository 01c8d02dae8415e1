#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace LibraryBrowser {

// A well-formedness check for the plain XML that our writers produce:
// ASCII, no declaration, comment, CDATA or doctype, no prefixed names, only
// the five named references. It runs several times faster than a full
// parser, which matters when a page reads a thousand icons at once. It says
// WellFormed only when it is sure; anything outside that plain form gets
// Unsure, and the caller asks the full parser.
class PlainXmlCheck {
public:
    enum class Verdict { WellFormed, Unsure };

    // WellFormed if the bytes are one plain element named `rootName`, with
    // only white space around it.
    static Verdict check(const QByteArray& bytes, QByteArrayView rootName);
};

} // namespace LibraryBrowser

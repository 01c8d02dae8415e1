// The quick well-formedness check against the full parser: whatever the
// quick check calls well formed, the full parser must read to the end
// without an error, with the asked-for root.
#include "FuzzInput.h"

#include "platform/PlainXmlCheck.h"

#include <QXmlStreamReader>

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = Fuzz::bytesOf(data, size);
    if (PlainXmlCheck::check(bytes, "svg") != PlainXmlCheck::Verdict::WellFormed)
        return 0;
    QXmlStreamReader reader(bytes);
    QString root;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && root.isEmpty())
            root = reader.name().toString();
    }
    if (reader.hasError() || root != QLatin1String("svg")) {
        std::fprintf(stderr, "called well formed, but the parser says: %s (root '%s')\n",
                     qPrintable(reader.errorString()), qPrintable(root));
        std::abort();
    }
    return 0;
}

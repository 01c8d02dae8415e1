#pragma once

#include "platform/HostValue.h"

#include <QRect>

#include <vector>

namespace LibraryBrowser::Python {

// The array arguments and results of the browser's scripted class, as host
// values: what a script passes becomes one by PythonValues first, so a list
// is a 1-by-n row and a list of rows a matrix, as everywhere in the package.
// A refused array throws a ScriptingError (BadArgument) with the class's text.
class BrowserArrays {
public:
    static constexpr const char* BadArgument = "Tandril:StandaloneBrowser:BadArgument";

    // x, y, width and height of a 1-by-4 real row, each rounded by adding
    // 0.5 and truncating, so 10.6 gives 11 and -10.6 gives -10.
    static QRect toPosition(const HostValue& array);
    static HostValue fromPosition(const QRect& rect);

    // Regular expression, match case, whole word: the first three elements
    // of a logical array, or of a real array where all but 0 is true, NaN too.
    static std::vector<bool> toSearchOptions(const HostValue& array);
    static HostValue fromSearchOptions(const std::vector<bool>& options);
};

} // namespace LibraryBrowser::Python

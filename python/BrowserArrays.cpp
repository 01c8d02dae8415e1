#include "BrowserArrays.h"

#include "scripting/ScriptingError.h"

#include <cmath>
#include <limits>

namespace LibraryBrowser::Python {

namespace {

int rounded(double value)
{
    const double shifted = value + 0.5;
    // Truncation of anything else is undefined; the class never had to say so.
    if (!std::isfinite(shifted) || shifted <= double(std::numeric_limits<int>::min()) - 1.0 ||
        shifted >= double(std::numeric_limits<int>::max()) + 1.0)
        throw ScriptingError(BrowserArrays::BadArgument, "Point should hold finite values within the range of int");
    return int(shifted);
}

} // namespace

QRect BrowserArrays::toPosition(const HostValue& array)
{
    if (!array.isDouble() || array.rows() != 1 || array.columns() != 4)
        throw ScriptingError(BadArgument, "Point should be a 1 x 4 array");
    const std::vector<double>& values = array.doubles();
    return QRect(rounded(values[0]), rounded(values[1]), rounded(values[2]), rounded(values[3]));
}

HostValue BrowserArrays::fromPosition(const QRect& rect)
{
    return HostValue::doubleMatrix(1, 4, {double(rect.x()), double(rect.y()), double(rect.width()),
                                          double(rect.height())});
}

std::vector<bool> BrowserArrays::toSearchOptions(const HostValue& array)
{
    std::vector<bool> options;
    if (array.isLogical()) {
        options = array.logicals();
    } else if (array.isDouble()) {
        for (double value : array.doubles())
            options.push_back(value != 0.0);
    } else {
        throw ScriptingError(BadArgument, "Inputs to setSearchOptions should be either logical or numeric");
    }
    // The window reads three; a shorter array would have it read past the end.
    if (options.size() < 3)
        throw ScriptingError(BadArgument, "setSearchOptions needs three values: regular expression, match case, "
                                          "whole word");
    options.resize(3);
    return options;
}

HostValue BrowserArrays::fromSearchOptions(const std::vector<bool>& options)
{
    return HostValue::logicalMatrix(1, options.size(), options);
}

} // namespace LibraryBrowser::Python

#pragma once

#include <QStringList>

#include <functional>

namespace LibraryBrowser::NameWrap {

// The lines a tile's name takes in a width, at most maxLines of them. A line
// ends where a reader expects a name to wrap (after a blank, a hyphen or an
// underscore, or where a lower-case letter meets a capital, or before the
// last capital of a run that starts a word, as in "PID|Controller"); only
// where no such place fits does it break between any two characters. The
// last line holds whatever is left, for the caller to elide.
QStringList wrapName(const QString& name, int width, int maxLines, const std::function<int(const QString&)>& widthOf);

} // namespace LibraryBrowser::NameWrap

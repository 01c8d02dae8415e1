#include "gui/NameWrap.h"

namespace LibraryBrowser::NameWrap {

namespace {

// Whether a line may end between name[at - 1] and name[at] by the rules above.
bool isWordBreak(const QString& name, int at)
{
    const QChar before = name[at - 1];
    const QChar after = name[at];
    if (before.isSpace() || before == '-' || before == '_')
        return !after.isSpace();
    if (before.isLower() && after.isUpper())
        return true;
    return before.isUpper() && after.isUpper() && at + 1 < name.size() && name[at + 1].isLower();
}

} // namespace

QStringList wrapName(const QString& name, int width, int maxLines, const std::function<int(const QString&)>& widthOf)
{
    QStringList lines;
    const QString text = name.trimmed();
    int start = 0;
    while (start < text.size()) {
        const QString rest = text.mid(start).trimmed();
        if (int(lines.size()) + 1 >= maxLines || widthOf(rest) <= width) {
            lines.append(rest);
            break;
        }
        int wordEnd = -1;
        int anyEnd = -1;
        for (int end = start + 1; end < text.size(); ++end) {
            if (widthOf(text.mid(start, end - start).trimmed()) > width)
                break;
            anyEnd = end;
            if (isWordBreak(text, end))
                wordEnd = end;
        }
        // Not even one character fits: it goes on a line of its own.
        const int end = wordEnd > 0 ? wordEnd : std::max(anyEnd, start + 1);
        lines.append(text.mid(start, end - start).trimmed());
        start = end;
        while (start < text.size() && text[start].isSpace())
            ++start;
    }
    return lines;
}

} // namespace LibraryBrowser::NameWrap

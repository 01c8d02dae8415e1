#include "gui/SelectionMoves.h"

#include <cctype>

namespace LibraryBrowser::SelectionMoves {

int left(int index) { return index < 1 ? -1 : index - 1; }

int right(int index, int count) { return index >= count - 1 ? -1 : index + 1; }

int down(int index, int count, int columns, bool listLayout)
{
    if (columns == 1 || columns == count || listLayout)
        return right(index, count);
    const int next = index + columns;
    return next >= count ? -1 : next;
}

int up(int index, int count, int columns, bool listLayout)
{
    if (columns == 1 || columns == count || listLayout)
        return left(index);
    const int previous = index - columns;
    return previous < 0 ? -1 : previous;
}

int home(int index) { return index >= 1 ? 0 : -1; }

int end(int index, int count) { return index < count - 1 ? count - 1 : -1; }

int byInitial(int index, const std::vector<std::string>& names, char key)
{
    const int count = int(names.size());
    if (count < 2)
        return -1;
    const char wanted = char(std::toupper(static_cast<unsigned char>(key)));
    const int start = index < 0 ? count - 1 : index;
    for (int step = 1; step <= count; ++step) {
        const int at = (start + step) % count;
        if (names[at].empty())
            continue;
        char initial = names[at].front();
        if (initial >= 'a' && initial <= 'z')
            initial = char(initial - 'a' + 'A');
        if (initial == wanted)
            return at;
    }
    return -1;
}

} // namespace LibraryBrowser::SelectionMoves

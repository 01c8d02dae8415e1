#include "gui/SectionOpening.h"

namespace LibraryBrowser {

bool SectionOpening::startsOpen(int hits, bool hiddenByName, bool shownByUser)
{
    if (m_shown + hits > m_limit)
        m_overflow = true;
    if (hiddenByName)
        return false;
    return !m_overflow || shownByUser;
}

} // namespace LibraryBrowser

#include "gui/SectionSlices.h"

#include <algorithm>

namespace LibraryBrowser {

SectionSlices::SectionSlices(int sections, int screenful, int perTurn, int lastShownByUser)
    : m_sections(std::max(0, sections)), m_screenful(std::max(1, screenful)), m_perTurn(std::max(1, perTurn)),
      m_lastShownByUser(lastShownByUser)
{
}

bool SectionSlices::makes(int first, int index, bool overflow) const
{
    if (index < first || index >= m_sections)
        return false;
    if (first == 0)
        return index < m_screenful || !overflow || index <= m_lastShownByUser;
    return index - first < m_perTurn;
}

} // namespace LibraryBrowser

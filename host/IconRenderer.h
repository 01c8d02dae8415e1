#pragma once

#include "BlockRecord.h"

#include <QByteArray>

#include <string>

namespace LibraryBrowser::Host {

// Draws a block's icon as a small SVG document: a frame the size of the
// block, its shape, its label and a mark per port, plus a corner mark for a
// subsystem or a reference. The same input always gives the same bytes.
class IconRenderer {
public:
    // The icon of a block; an icon with its own SVG is given back as it is.
    static QByteArray render(const IconSpec& icon, const std::string& name, BlockType type,
                             const BlockPosition& position);
    // The label shown when the icon names none: the name's first line, cut
    // to a length that fits.
    static std::string defaultLabel(const std::string& name);
};

} // namespace LibraryBrowser::Host

#pragma once

#include "BlockRecord.h"

#include <QDialog>

#include <string>

namespace LibraryBrowser::Host {

// The dialog of one block as the browser asks for it: name, path,
// description, ports and, where the library file gives them, parameters.
// "params" puts the parameters first in the title and says so when there
// are none.
class BlockDialog : public QDialog {
    Q_OBJECT

public:
    BlockDialog(const std::string& path, const BlockRecord& block, const std::string& kind);

    // "2 inputs, 1 output"; "none" for a block without ports; empty for an
    // icon drawn from SVG, which says nothing about its ports.
    static QString portsText(const BlockRecord& block);
};

} // namespace LibraryBrowser::Host

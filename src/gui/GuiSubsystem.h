#pragma once

#include "gui/GuiBlock.h"

namespace LibraryBrowser {

// A tile of anything with children: it looks stacked, a double click opens it
// in the tree instead of the host, and it can open its library in the host.
class GuiSubsystem : public GuiBlock {
public:
    using GuiBlock::GuiBlock;

    bool isSubsystem() const override { return true; }
    void respondToMouseDoubleClick() override;
    void openTandrilLib();
};

} // namespace LibraryBrowser

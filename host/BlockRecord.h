#pragma once

#include <string>
#include <utility>
#include <vector>

namespace LibraryBrowser::Host {

enum class BlockType { Block, SubSystem, LibraryRef };

// The type as library files and host answers spell it.
inline const char* blockTypeName(BlockType type)
{
    switch (type) {
    case BlockType::SubSystem: return "SubSystem";
    case BlockType::LibraryRef: return "LibraryRef";
    case BlockType::Block: break;
    }
    return "Block";
}

enum class IconShape { Rectangle, Rounded, Triangle, Circle, Diamond };

// Where a block sits in its library: the four edges, in library units.
struct BlockPosition {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

// How a block's icon is drawn: a shape with a label and port marks, or,
// when svg is not empty, that document as it stands.
struct IconSpec {
    IconShape shape = IconShape::Rectangle;
    std::string label;
    int inputs = 1;
    int outputs = 1;
    std::string svg;
};

// What a library reference points at: a library, and a path inside it
// (empty for the library itself), in the host's path notation.
struct ReferenceTarget {
    std::string library;
    std::string path;
};

// One block of a library file, as read. Subsystems hold their blocks in
// order; a reference holds its target. A reference without a description or
// an icon of its own shows those of its target.
struct BlockRecord {
    std::string name;
    BlockType type = BlockType::Block;
    std::string description;
    bool hasDescription = false;
    BlockPosition position;
    IconSpec icon;
    bool hasIcon = false;
    std::vector<BlockRecord> blocks;
    ReferenceTarget target;
    // Named values of the block's dialog, by name.
    std::vector<std::pair<std::string, std::string>> parameters;
};

} // namespace LibraryBrowser::Host

#pragma once

#include "BlockTree.h"
#include "LibraryDocument.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace LibraryBrowser::Host {

enum class SystemType { Model, Library };

// A model or library the host has open: its own copy of the blocks, which
// commands change and which can be saved as a library file.
struct OpenSystem {
    std::string name;
    SystemType type = SystemType::Model;
    bool locked = false;
    bool shown = false;
    bool dirty = false;
    QString file;
    LibraryDocument document;
};

// The systems the host has open and the one in front. A library opened from
// the path comes in locked, as shipped libraries are; new systems are
// unlocked and take the first free name of "untitled", "untitled1", ...
class SystemRegistry {
public:
    struct Point {
        double x = 0;
        double y = 0;
    };

    explicit SystemRegistry(BlockTree& tree) : m_tree(tree) {}

    // Loads the library at the root of the path; unless only loading, shows
    // it and puts it in front.
    bool open(const std::string& path, bool loadOnly, std::string& error);
    bool isLoaded(const std::string& name) const { return find(name) != nullptr; }
    std::string newSystem(SystemType type);
    // The system in front, or null.
    const OpenSystem* current() const { return find(m_current); }
    const OpenSystem* find(const std::string& name) const;
    const std::vector<OpenSystem>& systems() const { return m_systems; }
    void setLocked(const std::string& name, bool locked);
    // Whether the path names a block of an open system or of a library.
    bool blockExists(const std::string& path);
    // The block at the path, from an open system or a library.
    bool findBlock(const std::string& path, BlockRecord& out, std::string& error) { return sourceBlock(path, out, error); }
    // Puts a shown system in front, as activating its window does.
    void setCurrent(const std::string& name);
    // Drops the system, saved or not; the last shown one that stays comes to
    // the front. False when no such system is open.
    bool close(const std::string& name);
    // Opens a model saved as a library file, unlocked and shown.
    bool openFile(const QString& file, std::string& error);
    // Copies the block at source into the destination system or subsystem
    // under a name not yet used there; at the point when one is given.
    bool addBlock(const std::string& source, const std::string& destination, std::optional<Point> at,
                  std::string& addedPath, std::string& error);
    // Gives an open system another name, as saving it to a file of that name
    // does. Fails for a name that is not a library name, that an open system
    // has, or that a library on the path has.
    bool rename(const std::string& from, const std::string& to, std::string& error);
    // Writes the system as a library file: to the file given, else to the one
    // it came from.
    bool save(const std::string& name, const QString& file, std::string& error);

private:
    OpenSystem* findMutable(const std::string& name);
    bool sourceBlock(const std::string& path, BlockRecord& out, std::string& error);
    static std::string uniqueName(const std::vector<BlockRecord>& siblings, const std::string& wanted);

    BlockTree& m_tree;
    std::vector<OpenSystem> m_systems;
    std::string m_current;
};

} // namespace LibraryBrowser::Host

#pragma once

#include "repository/TandrilObjectIterator.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace LibraryBrowser {

class RepositoryReader;

// A pre-order walk: a subsystem, then everything below it, then its next
// sibling. The root is not returned; without a valid root a walk from the
// top runs over all products. Library references are entered like any
// subsystem (the reader answers with their targets' children). The walk
// remembers the paths of the subsystems it is inside of, and does not enter
// or return one of them again: that cuts cycles, while a library reached
// along two branches is walked twice. Each reference, by its path, is entered
// once per walk and returned without its target's blocks after that: a
// reference met again along another branch would otherwise double the walk
// for each level of references above it. Nor is one entered below 64 open
// references, as deep as a library file nests subsystems: the paths of
// objects grow with each level, and a long chain of references would cost
// memory with the square of its length. Products are loaded only as the
// walk reaches them. The walk holds its reader for as long as it lives.
class TandrilObjectDepthFirstIterator : public TandrilObjectBaseIterator {
public:
    static constexpr int MaximumReferenceDepth = 64;

    TandrilObjectDepthFirstIterator(RepositoryReader* reader, const TandrilObject& root, bool fromTop);

    TandrilObject current() override;
    void next() override;
    bool isValid() override { return !m_stack.empty(); }
    void restart() override;
    std::unique_ptr<TandrilObjectBaseIterator> clone() const override;
    const ShownName* currentShownName() override;

private:
    TandrilObjectDepthFirstIterator(const TandrilObjectDepthFirstIterator& other) = default;
    // Enters the object if it is a subsystem with children not entered yet.
    bool enter(const TandrilObject& object);
    bool isEntered(const std::string& path) const;
    // The current object is known, by its shown name, to be no subsystem.
    bool atPlainBlock() const;

    bool m_fromTop;
    TandrilObject m_root;
    RepositoryReader* m_reader;
    // Null for a reader that is not held by a shared pointer.
    std::shared_ptr<RepositoryReader> m_keepAlive;
    // One iterator per level of the descent, innermost last.
    std::vector<TandrilObjectIterator> m_stack;
    // The paths of the subsystems entered, one per level below the first:
    // a descent is a few levels deep, so a scan beats hashing each object's
    // path.
    std::vector<std::string> m_entered;
    // The current object's shown name, taken when the walk came to it; null
    // where the level has none. It lives in the names its level's iterator holds.
    const ShownName* m_shown = nullptr;
    // The paths of the references entered in this walk.
    std::unordered_set<std::string> m_referencesEntered;
    // Whether each level of m_entered is a reference, and how many are.
    std::vector<bool> m_enteredReference;
    int m_openReferences = 0;
};

} // namespace LibraryBrowser

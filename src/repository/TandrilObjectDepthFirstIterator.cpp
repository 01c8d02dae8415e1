#include "repository/TandrilObjectDepthFirstIterator.h"

#include "model/LibraryRefImpl.h"
#include "model/SubSystemImpl.h"
#include "model/NodeCast.h"
#include "repository/RepositoryReader.h"

#include <algorithm>

namespace LibraryBrowser {

namespace {

// A subsystem's text path, read in place; null for any other object. Only
// subsystems are ever entered, so only theirs is compared: a search reads
// no more of a plain block than its kind.
const std::string* subsystemPath(const TandrilObject& object)
{
    const auto* subsystem = nodeCast<const SubSystemImpl>(object.getImpl());
    return subsystem ? &subsystem->getPath() : nullptr;
}

} // namespace

TandrilObjectDepthFirstIterator::TandrilObjectDepthFirstIterator(RepositoryReader* reader, const TandrilObject& root,
                                                                 bool fromTop)
    : m_fromTop(fromTop),
      m_root(root),
      m_reader(reader),
      m_keepAlive(reader ? reader->weak_from_this().lock() : nullptr)
{
    restart();
}

void TandrilObjectDepthFirstIterator::restart()
{
    m_shown = nullptr;
    m_entered.clear();
    m_enteredReference.clear();
    m_openReferences = 0;
    m_referencesEntered.clear();
    m_stack.clear();
    if (!m_reader)
        return;
    TandrilObjectIterator first;
    if (m_root.isValid())
        first = m_reader->getChildrenIterator(m_root);
    else if (m_fromTop)
        first = m_reader->getProductsIterator();
    if (first.isValidIterator()) {
        m_stack.push_back(std::move(first));
        m_shown = m_stack.back().currentShownName();
    }
}

TandrilObject TandrilObjectDepthFirstIterator::current()
{
    return m_stack.back().current();
}

bool TandrilObjectDepthFirstIterator::isEntered(const std::string& path) const
{
    return std::find(m_entered.begin(), m_entered.end(), path) != m_entered.end();
}

bool TandrilObjectDepthFirstIterator::enter(const TandrilObject& object)
{
    const std::string* path = subsystemPath(object);
    if (!path || isEntered(*path))
        return false;
    const bool reference = nodeCast<const LibraryRefImpl>(object.getImpl()) != nullptr;
    if (reference && (m_openReferences >= MaximumReferenceDepth || !m_referencesEntered.insert(*path).second))
        return false;
    // Copied first: loading the children may reload the object's own node.
    std::string entered = *path;
    TandrilObjectIterator children = m_reader->getChildrenIterator(object.toSubSystem());
    if (children.isEmpty())
        return false;
    m_stack.push_back(std::move(children));
    m_entered.push_back(std::move(entered));
    m_enteredReference.push_back(reference);
    m_openReferences += reference ? 1 : 0;
    return true;
}

bool TandrilObjectDepthFirstIterator::atPlainBlock() const
{
    return m_shown && !m_shown->isSubSystem;
}

const ShownName* TandrilObjectDepthFirstIterator::currentShownName()
{
    return m_stack.empty() ? nullptr : m_shown;
}

void TandrilObjectDepthFirstIterator::next()
{
    if (m_stack.empty())
        return;
    for (;;) {
        // A plain block known by its shown name has nothing to enter: its
        // node is not reached at all.
        if (atPlainBlock() || !enter(current())) {
            for (;;) {
                m_stack.back().next();
                if (m_stack.back().isValidIterator())
                    break;
                m_stack.pop_back();
                if (m_stack.empty()) {
                    m_shown = nullptr;
                    return;
                }
                // The level left is the subsystem entered last.
                m_entered.pop_back();
                m_openReferences -= m_enteredReference.back() ? 1 : 0;
                m_enteredReference.pop_back();
            }
        }
        m_shown = m_stack.back().currentShownName();
        if (atPlainBlock())
            return;
        // A subsystem the walk is inside of already, met again through a
        // reference that closes a cycle: stepped over, not returned.
        const std::string* path = subsystemPath(current());
        if (!path || !isEntered(*path))
            return;
    }
}

std::unique_ptr<TandrilObjectBaseIterator> TandrilObjectDepthFirstIterator::clone() const
{
    return std::unique_ptr<TandrilObjectBaseIterator>(new TandrilObjectDepthFirstIterator(*this));
}

} // namespace LibraryBrowser

#include "repository/TandrilObjectDepthFirstIterator.h"

#include "repository/RepositoryReader.h"

namespace LibraryBrowser {

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
    m_entered.clear();
    m_stack.clear();
    if (!m_reader)
        return;
    TandrilObjectIterator first;
    if (m_root.isValid())
        first = m_reader->getChildrenIterator(m_root);
    else if (m_fromTop)
        first = m_reader->getProductsIterator();
    if (first.isValidIterator())
        m_stack.push_back(std::move(first));
}

TandrilObject TandrilObjectDepthFirstIterator::current()
{
    return m_stack.back().current();
}

bool TandrilObjectDepthFirstIterator::enter(const TandrilObject& object, const std::string& path)
{
    if (m_entered.count(path))
        return false;
    const SubSystem subsystem = object.toSubSystem();
    if (!subsystem.isValid())
        return false;
    TandrilObjectIterator children = m_reader->getChildrenIterator(subsystem);
    if (children.isEmpty())
        return false;
    m_stack.push_back(std::move(children));
    m_entered.insert(path);
    return true;
}

void TandrilObjectDepthFirstIterator::next()
{
    if (m_stack.empty())
        return;
    TandrilObject object = current();
    std::string path = object.getPath();
    for (;;) {
        if (!enter(object, path)) {
            for (;;) {
                m_stack.back().next();
                if (m_stack.back().isValidIterator())
                    break;
                m_stack.pop_back();
                if (m_stack.empty())
                    return;
                m_entered.erase(current().getPath());
            }
        }
        object = current();
        path = object.getPath();
        // A subsystem the walk is inside of already, met again through a
        // reference that closes a cycle: stepped over, not returned.
        if (!m_entered.count(path))
            return;
    }
}

std::unique_ptr<TandrilObjectBaseIterator> TandrilObjectDepthFirstIterator::clone() const
{
    return std::unique_ptr<TandrilObjectBaseIterator>(new TandrilObjectDepthFirstIterator(*this));
}

} // namespace LibraryBrowser

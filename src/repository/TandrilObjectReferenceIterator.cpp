#include "repository/TandrilObjectReferenceIterator.h"

namespace LibraryBrowser {

TandrilObjectReferenceIterator::TandrilObjectReferenceIterator(ReaderCache* cache, TandrilObjectListPtr list)
    : m_cache(cache), m_list(list ? std::move(list) : std::make_shared<const TandrilObjectList>()), m_wrapping(false)
{
}

TandrilObjectReferenceIterator::TandrilObjectReferenceIterator(ReaderCache* cache, TandrilObjectIterator wrapped)
    : m_cache(cache), m_wrapped(std::move(wrapped)), m_wrapping(true)
{
}

TandrilObjectIterator TandrilObjectReferenceIterator::overList(ReaderCache* cache, TandrilObjectListPtr list)
{
    return TandrilObjectIterator(std::make_unique<TandrilObjectReferenceIterator>(cache, std::move(list)));
}

TandrilObjectIterator TandrilObjectReferenceIterator::overList(ReaderCache* cache, TandrilObjectList list)
{
    return overList(cache, std::make_shared<const TandrilObjectList>(std::move(list)));
}

TandrilObjectIterator TandrilObjectReferenceIterator::overList(ReaderCache* cache, TandrilObjectListPtr list,
                                                             ShownNamesPtr names)
{
    auto engine = std::make_unique<TandrilObjectReferenceIterator>(cache, std::move(list));
    if (names && names->size() == engine->m_list->size())
        engine->m_names = std::move(names);
    return TandrilObjectIterator(std::move(engine));
}

const ShownName* TandrilObjectReferenceIterator::currentShownName()
{
    return m_names && !m_wrapping && m_cursor < m_names->size() ? &(*m_names)[m_cursor] : nullptr;
}

TandrilObject TandrilObjectReferenceIterator::current()
{
    if (m_wrapping)
        return TandrilObject(m_wrapped.current().getImpl(), m_cache);
    return (*m_list)[m_cursor];
}

void TandrilObjectReferenceIterator::next()
{
    if (m_wrapping)
        m_wrapped.next();
    else if (m_cursor < m_list->size())
        ++m_cursor;
}

bool TandrilObjectReferenceIterator::isValid()
{
    return m_wrapping ? m_wrapped.isValidIterator() : m_cursor < m_list->size();
}

void TandrilObjectReferenceIterator::restart()
{
    if (m_wrapping)
        m_wrapped.restart();
    else
        m_cursor = 0;
}

std::unique_ptr<TandrilObjectBaseIterator> TandrilObjectReferenceIterator::clone() const
{
    std::unique_ptr<TandrilObjectReferenceIterator> copy;
    if (m_wrapping)
        copy = std::make_unique<TandrilObjectReferenceIterator>(m_cache, m_wrapped);
    else
        copy = std::make_unique<TandrilObjectReferenceIterator>(m_cache, m_list);
    copy->m_cursor = m_cursor;
    copy->m_names = m_names;
    return copy;
}

} // namespace LibraryBrowser

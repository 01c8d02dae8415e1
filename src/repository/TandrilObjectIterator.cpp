#include "repository/TandrilObjectIterator.h"

namespace LibraryBrowser {

TandrilObjectIterator::TandrilObjectIterator(std::unique_ptr<TandrilObjectBaseIterator> engine)
    : m_engine(std::move(engine))
{
}

TandrilObjectIterator::TandrilObjectIterator(const TandrilObjectIterator& other)
    : m_engine(other.m_engine ? other.m_engine->clone() : nullptr)
{
}

TandrilObjectIterator& TandrilObjectIterator::operator=(const TandrilObjectIterator& other)
{
    if (this != &other)
        m_engine = other.m_engine ? other.m_engine->clone() : nullptr;
    return *this;
}

TandrilObjectIterator::~TandrilObjectIterator() = default;

bool TandrilObjectIterator::isValidIterator()
{
    return m_engine && m_engine->isValid();
}

TandrilObject TandrilObjectIterator::current()
{
    return isValidIterator() ? m_engine->current() : TandrilObject();
}

const ShownName* TandrilObjectIterator::currentShownName()
{
    return isValidIterator() ? m_engine->currentShownName() : nullptr;
}

void TandrilObjectIterator::next()
{
    if (!isValidIterator())
        return;
    m_engine->next();
    ++m_position;
}

void TandrilObjectIterator::restart()
{
    if (!m_engine)
        return;
    m_engine->restart();
    m_position = 0;
}

bool TandrilObjectIterator::isEmpty()
{
    return m_position == 0 && !isValidIterator();
}

int TandrilObjectIterator::size() const
{
    if (!m_engine)
        return 0;
    TandrilObjectIterator copy(*this);
    copy.restart();
    int count = 0;
    for (; copy.isValidIterator(); copy.next())
        ++count;
    return count;
}

} // namespace LibraryBrowser

#include "repository/Handle.h"

#include "model/LibraryRefImpl.h"
#include "repository/ReaderCache.h"
#include "repository/TandrilObject.h"

namespace LibraryBrowser {

namespace {

// Strings of the nodes of block kind; the empty string otherwise.
template <class Getter>
std::string blockText(const Handle& handle, Getter getter)
{
    const auto* block = nodeCast<const BlockImpl>(handle.getImpl());
    return block ? (block->*getter)() : std::string();
}

} // namespace

Handle::Handle(TandrilObjectImpl* node, ReaderCache* cache) : m_data(HandleData::acquire(node, cache))
{
    if (m_data)
        m_data->ref();
}

Handle& Handle::operator=(const Handle& other)
{
    if (other.m_data)
        other.m_data->ref();
    if (m_data)
        m_data->unref();
    m_data = other.m_data;
    return *this;
}

Handle& Handle::operator=(Handle&& other) noexcept
{
    if (this != &other) {
        if (m_data)
            m_data->unref();
        m_data = other.m_data;
        other.m_data = nullptr;
    }
    return *this;
}

const StringId& Handle::emptyId()
{
    static const StringId empty;
    return empty;
}

bool Handle::isValid() const
{
    const TandrilObjectImpl* node = getImpl();
    return node && !node->getIsInvalid();
}

std::string Handle::getType() const
{
    const auto* block = nodeCast<const BlockImpl>(getImpl());
    if (!block)
        return "InvalidBlock";
    const std::string& typeName = block->getTypeName().str();
    return typeName.size() < 4 ? typeName : typeName.substr(0, typeName.size() - 4);
}

std::string Handle::getPath() const { return blockText(*this, &BlockImpl::getPath); }
std::string Handle::getName() const { return blockText(*this, &BlockImpl::getName); }
std::string Handle::getDisplayName() const { return blockText(*this, &BlockImpl::getDisplayName); }
std::string Handle::getDisplayPath() const { return blockText(*this, &BlockImpl::getDisplayPath); }
std::string Handle::getProductName() const { return blockText(*this, &BlockImpl::getProductName); }
std::string Handle::getDescription() const { return blockText(*this, &BlockImpl::getDescription); }

QRectF Handle::getBlockPosition() const
{
    const BlockImpl* node = implAs<BlockImpl>();
    return node ? node->getPosition() : QRectF();
}

BlockIconPtr Handle::getIcon() const
{
    if (!isValid() || !m_data->cache())
        return nullptr;
    return m_data->cache()->getIcon(TandrilObject(*this));
}

bool Handle::getIsEmpty() const
{
    auto* subsystem = implAs<SubSystemImpl>();
    return subsystem ? subsystem->getIsEmpty() : true;
}

bool Handle::getIsFlat() const
{
    auto* subsystem = implAs<SubSystemImpl>();
    return subsystem ? subsystem->getIsFlat() : true;
}

bool Handle::getIsProduct() const
{
    auto* library = implAs<LibraryImpl>();
    return library ? library->getIsProduct() : false;
}

std::string Handle::getLibraryRefName() const
{
    auto* reference = implAs<LibraryRefImpl>();
    return reference ? reference->getLibraryRefName() : std::string();
}

std::string Handle::getLibraryRefPath() const
{
    auto* reference = implAs<LibraryRefImpl>();
    return reference ? reference->getLibraryRefPath() : std::string();
}

} // namespace LibraryBrowser

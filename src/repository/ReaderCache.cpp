#include "repository/ReaderCache.h"

#include "model/BlockImpl.h"
#include "repository/HandleData.h"
#include "repository/InvalidObjects.h"

#include <QString>
#include <QStringList>

namespace LibraryBrowser {

ReaderCache::~ReaderCache()
{
    // Its handles go while the table they unregister from is still whole.
    m_products.clear();
    m_handles.forEach([](HandleData* data) {
        if (data)
            data->orphan();
    });
}

std::string ReaderCache::productKey(const std::string& id)
{
    const std::string product = id.substr(0, id.find('/'));
    return product.substr(0, product.find('-'));
}

Library ReaderCache::getProduct(const std::string& id)
{
    const std::string key = productKey(id);
    const auto isProductOfKey = [&key](const TandrilObjectImpl* object) {
        const auto* node = static_cast<const LibraryImpl*>(object);
        return node && node->getIsProduct() && (node->getUniquePath().str() == key || node->getDisplayPath() == key);
    };
    const auto known = m_products.find(key);
    if (known != m_products.end() && isProductOfKey(known->second.getData()->node()))
        return known->second;
    // One pass learns every product's keys, the first product of each key
    // as a scan for it would find it: a scan per product asked for made a
    // read of every product grow with the square of their number.
    std::unordered_map<std::string, Library> first;
    for (TandrilObjectIterator it = getProductsIterator(); it.isValidIterator(); it.next()) {
        const Library library = it.current().toLibrary();
        const auto* node = static_cast<const LibraryImpl*>(library.getImpl());
        if (!node || !node->getIsProduct())
            continue;
        first.emplace(node->getUniquePath().str(), library);
        first.emplace(node->getDisplayPath(), library);
    }
    for (auto& [name, library] : first)
        m_products[name] = library;
    const auto found = m_products.find(key);
    return found != m_products.end() && isProductOfKey(found->second.getData()->node()) ? found->second : Library();
}

Library ReaderCache::getProductOf(const TandrilObject& object)
{
    if (!object.isValid())
        return Library();
    return getProduct(object.getProductName());
}

TandrilObject ReaderCache::findObject(const StringId& id)
{
    HandleData* const known = m_handles.find(id);
    if (known && known->node())
        return TandrilObject::fromData(known);

    const QStringList tokens = QString::fromStdString(id.str()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (tokens.isEmpty())
        return placeholder(id, InvalidObjects::invalidBlock());

    const std::string first = tokens.front().toStdString();
    TandrilObject object;
    if (first.find('-') == std::string::npos) {
        object = getProduct(first);
    } else {
        // A referenced library: listed with the products' dependencies.
        for (TandrilObjectIterator it = getAllProductsIterator(); it.isValidIterator(); it.next()) {
            const TandrilObject candidate = it.current();
            if (candidate.getImpl() && candidate.getImpl()->getUniquePath().str() == first) {
                object = candidate;
                break;
            }
        }
    }
    if (!object.isValid())
        return placeholder(id, InvalidObjects::invalidLibrary());

    for (int i = 1; i < tokens.size(); ++i) {
        const std::string name = tokens[i].toStdString();
        TandrilObject found;
        for (TandrilObjectIterator it = getChildrenIterator(object); it.isValidIterator(); it.next()) {
            const TandrilObject child = it.current();
            if (child.getName() == name) {
                found = child;
                break;
            }
        }
        if (!found.isValid())
            return placeholder(id, InvalidObjects::invalidBlock());
        object = found;
    }
    return object;
}

TandrilObject ReaderCache::placeholder(const StringId& id, TandrilObjectImpl* node)
{
    return TandrilObject::fromData(HandleData::acquire(id, node, this));
}

void ReaderCache::clearHandles()
{
    ++m_clearCount;
    m_handles.forEach([](HandleData* data) {
        if (data)
            data->clearNode();
    });
}

void ReaderCache::clearProductHandles(const std::string& productKey)
{
    ++m_clearCount;
    for (HandleData* data : m_invalidHandles)
        data->clearNode();
    const auto product = m_productHandles.find(productKey);
    if (product != m_productHandles.end())
        for (HandleData* data = product->second.first; data; data = data->m_nextOfProduct)
            data->clearNode();
}

void ReaderCache::clearTopLevelHandles()
{
    ++m_clearCount;
    for (HandleData* data : m_libraryHandles)
        data->clearNode();
    for (HandleData* data : m_invalidHandles)
        data->clearNode();
}

void ReaderCache::forgetModels(const std::unordered_set<const Model*>& models)
{
    if (models.empty())
        return;
    ++m_clearCount;
    for (const Model* model : models) {
        const auto first = m_modelHandles.find(model);
        if (first == m_modelHandles.end())
            continue;
        HandleData* data = first->second;
        m_modelHandles.erase(first);
        while (data) {
            HandleData* next = data->m_nextOfModel;
            data->m_node = nullptr;
            data->m_model = nullptr;
            data->m_previousOfModel = data->m_nextOfModel = nullptr;
            data = next;
        }
    }
}

void ReaderCache::fileByModel(HandleData& data, const Model* model)
{
    if (data.m_model) {
        HandleData* previous = data.m_previousOfModel;
        HandleData* next = data.m_nextOfModel;
        if (next)
            next->m_previousOfModel = previous;
        if (previous)
            previous->m_nextOfModel = next;
        else if (next)
            m_modelHandles[data.m_model] = next;
        else
            m_modelHandles.erase(data.m_model);
    }
    data.m_model = model;
    data.m_previousOfModel = nullptr;
    data.m_nextOfModel = nullptr;
    if (!model)
        return;
    HandleData*& first = m_modelHandles[model];
    if (first) {
        first->m_previousOfModel = &data;
        data.m_nextOfModel = first;
    }
    first = &data;
}

HandleData* ReaderCache::lookupHandle(const StringId& id) const
{
    return m_handles.find(id);
}

void ReaderCache::registerHandle(HandleData* data)
{
    fileByModel(*data, data->node() ? data->node()->getModel() : nullptr);
    const std::string& text = data->id().str();
    const TandrilObjectImpl* node = data->node();
    if (node && node->getIsInvalid()) {
        data->setHandleSet(HandleData::HandleSet::Invalid);
        m_invalidHandles.insert(data);
    } else if (text.find('/') == std::string::npos) {
        data->setHandleSet(HandleData::HandleSet::Library);
        m_libraryHandles.insert(data);
    } else {
        data->setHandleSet(HandleData::HandleSet::Product);
        ProductHandleList& product = productHandles(text);
        data->m_product = &product;
        data->m_nextOfProduct = product.first;
        if (product.first)
            product.first->m_previousOfProduct = data;
        product.first = data;
        ++product.count;
    }
}

ProductHandleList& ReaderCache::productHandles(const std::string& id)
{
    const std::size_t size = m_lastProductKey.size();
    // The key is the id up to its first "/" or "-"; the last key has neither.
    if (m_lastProduct && id.compare(0, size, m_lastProductKey) == 0
        && (id.size() == size || id[size] == '/' || id[size] == '-'))
        return *m_lastProduct;
    m_lastProductKey = productKey(id);
    m_lastProduct = &m_productHandles[m_lastProductKey];
    return *m_lastProduct;
}

void ReaderCache::unregisterHandle(HandleData* data)
{
    m_handles.erase(data->id(), data);
    fileByModel(*data, nullptr);
    switch (data->handleSet()) {
    case HandleData::HandleSet::Library:
        m_libraryHandles.erase(data);
        break;
    case HandleData::HandleSet::Invalid:
        m_invalidHandles.erase(data);
        break;
    case HandleData::HandleSet::Product: {
        ProductHandleList& product = *data->m_product;
        if (data->m_nextOfProduct)
            data->m_nextOfProduct->m_previousOfProduct = data->m_previousOfProduct;
        if (data->m_previousOfProduct)
            data->m_previousOfProduct->m_nextOfProduct = data->m_nextOfProduct;
        else
            product.first = data->m_nextOfProduct;
        --product.count;
        data->m_product = nullptr;
        data->m_previousOfProduct = data->m_nextOfProduct = nullptr;
        break;
    }
    }
}

std::size_t ReaderCache::productHandleCount(const std::string& productKey) const
{
    const auto product = m_productHandles.find(productKey);
    return product == m_productHandles.end() ? 0 : product->second.count;
}

} // namespace LibraryBrowser

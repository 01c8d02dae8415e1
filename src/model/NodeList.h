#pragma once

#include <QList>

namespace LibraryBrowser {

// A list of node pointers that it does not own. Copies share their data until
// one of them changes (the list is implicitly shared), so handing a list to a
// setter is cheap.
template <class T>
class NodeList {
public:
    using const_iterator = typename QList<T*>::const_iterator;

    void append(T* node) { m_items.append(node); }
    void prepend(T* node) { m_items.prepend(node); }
    void insert(int index, T* node) { m_items.insert(index, node); }
    void set(int index, T* node) { m_items[index] = node; }
    void removeAt(int index) { m_items.removeAt(index); }
    // Removes every occurrence; returns how many there were.
    int removeAll(T* node) { return int(m_items.removeAll(node)); }
    bool removeOnce(T* node) { return m_items.removeOne(node); }
    void clear() { m_items.clear(); }
    T* pop_front() { return m_items.takeFirst(); }
    T* pop_back() { return m_items.takeLast(); }

    T* get(int index) const { return m_items.at(index); }
    T* front() const { return m_items.front(); }
    T* back() const { return m_items.back(); }
    bool isEmpty() const { return m_items.isEmpty(); }
    bool hasElement(T* node) const { return m_items.contains(node); }
    int size() const { return int(m_items.size()); }

    const_iterator begin() const { return m_items.cbegin(); }
    const_iterator end() const { return m_items.cend(); }

    // Empty lists are settled before QList compares: Qt 6.4 hands a null
    // data pointer of an empty list to memcmp.
    bool operator==(const NodeList& other) const
    {
        return m_items.size() == other.m_items.size() && (m_items.isEmpty() || m_items == other.m_items);
    }
    bool operator!=(const NodeList& other) const { return !(*this == other); }
    // True when both lists share one block of data.
    bool sharesDataWith(const NodeList& other) const
    {
        return m_items.constData() == other.m_items.constData();
    }

private:
    QList<T*> m_items;
};

} // namespace LibraryBrowser

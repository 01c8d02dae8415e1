#include "repository/HandleTable.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace LibraryBrowser {

namespace {

constexpr std::size_t FirstCapacity = 1024;
// Old slots moved over per entry made: the old table, at most half full
// when it was replaced, is empty long before the new one is half full.
constexpr std::size_t MoveStep = 8;

} // namespace

HandleTable::Slots::Slots(std::size_t capacity) : capacity(capacity)
{
    if (capacity == 0)
        return;
    // Zeroed pages from the system for a large table: no pass to clear it.
    array.reset(static_cast<Slot*>(std::calloc(capacity, sizeof(Slot))));
    if (!array)
        throw std::bad_alloc();
}

HandleTable::Slot& HandleTable::Slots::probe(const void* key) const
{
    const std::size_t mask = capacity - 1;
    for (std::size_t i = slotOf(key, capacity);; i = (i + 1) & mask) {
        Slot& slot = array[i];
        if (slot.key == key || !slot.key)
            return slot;
    }
}

HandleTable::HandleTable() : m_current(FirstCapacity) {}

const void* HandleTable::erasedKey()
{
    static const char erased = 0;
    return &erased;
}

std::size_t HandleTable::slotOf(const void* key, std::size_t capacity)
{
    // Interned strings lie at aligned, near addresses: their low bits alone
    // would crowd a few runs of slots.
    std::uint64_t hash = std::uint64_t(reinterpret_cast<std::uintptr_t>(key));
    hash ^= hash >> 33;
    hash *= 0xff51afd7ed558ccdull;
    hash ^= hash >> 33;
    return std::size_t(hash) & (capacity - 1);
}

HandleData* HandleTable::find(const StringId& id) const
{
    const void* key = keyOf(id);
    const Slot& slot = m_current.probe(key);
    if (slot.key == key)
        return slot.value;
    if (m_old.count > 0) {
        const Slot& old = m_old.probe(key);
        if (old.key == key)
            return old.value;
    }
    return nullptr;
}

HandleData*& HandleTable::entry(const StringId& id)
{
    const void* key = keyOf(id);
    {
        Slot& slot = m_current.probe(key);
        if (slot.key == key)
            return slot.value;
    }
    HandleData* value = nullptr;
    if (m_old.count > 0) {
        Slot& old = m_old.probe(key);
        if (old.key == key) {
            value = old.value;
            old = Slot{erasedKey(), nullptr};
            --m_old.count;
        }
    }
    if (2 * (m_current.count + 1) > m_current.capacity) {
        moveOver(m_old.capacity);
        const std::size_t capacity = std::max(2 * m_current.capacity, FirstCapacity);
        m_old = std::move(m_current);
        m_current = Slots(capacity);
        m_moved = 0;
    }
    moveOver(MoveStep);
    Slot& slot = m_current.probe(key);
    slot = Slot{key, value};
    ++m_current.count;
    return slot.value;
}

void HandleTable::erase(const StringId& id, const HandleData* data)
{
    const void* key = keyOf(id);
    Slot& slot = m_current.probe(key);
    if (slot.key == key) {
        if (slot.value == data)
            removeFromCurrent(slot);
        return;
    }
    if (m_old.count > 0) {
        Slot& old = m_old.probe(key);
        if (old.key == key && old.value == data) {
            old = Slot{erasedKey(), nullptr};
            --m_old.count;
        }
    }
}

void HandleTable::moveOver(std::size_t count)
{
    if (!m_old.array)
        return;
    const std::size_t end = std::min(m_old.capacity, m_moved + count);
    for (; m_moved < end && m_old.count > 0; ++m_moved) {
        Slot& old = m_old.array[m_moved];
        if (!isLive(old))
            continue;
        m_current.probe(old.key) = old;
        ++m_current.count;
        --m_old.count;
        old = Slot{erasedKey(), nullptr};
    }
    if (m_old.count == 0) {
        m_old = Slots();
        m_moved = 0;
    }
}

void HandleTable::removeFromCurrent(Slot& slot)
{
    const std::size_t mask = m_current.capacity - 1;
    Slot* array = m_current.array.get();
    std::size_t gap = std::size_t(&slot - array);
    for (std::size_t next = (gap + 1) & mask; array[next].key; next = (next + 1) & mask) {
        // An entry moves back into the gap unless its home lies after the
        // gap in its run: probing from its home would not reach it there.
        const std::size_t home = slotOf(array[next].key, m_current.capacity);
        if (((next - home) & mask) >= ((next - gap) & mask)) {
            array[gap] = array[next];
            gap = next;
        }
    }
    array[gap] = Slot{nullptr, nullptr};
    --m_current.count;
}

} // namespace LibraryBrowser

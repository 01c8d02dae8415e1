#include "platform/StringId.h"

#include <algorithm>
#include <deque>
#include <string_view>
#include <vector>

namespace LibraryBrowser {

namespace {

// The strings, each interned once, and an open-addressed table of them by
// hash. A store of 100,000 blocks interns as many unique paths; a node-based
// set spent more on its buckets' pointer chase and prime-modulo hashing than
// on the strings themselves. At a million the table is tens of megabytes:
// past half full it takes one twice the size and moves the old one's slots
// over a few at a time with each string interned, looking in both until
// then, instead of stopping a read for a whole rehash.
class Pool {
public:
    Pool() : m_slots(1024) { intern(std::string_view()); }

    const std::string* intern(std::string_view text)
    {
        const std::size_t hash = std::hash<std::string_view>()(text);
        if (const std::string* found = find(m_slots, hash, text))
            return found;
        if (!m_old.empty())
            if (const std::string* found = find(m_old, hash, text))
                return found;
        if (2 * (m_strings.size() + 1) > m_slots.size())
            grow();
        moveOver(MoveStep);
        const std::string* stored = &m_strings.emplace_back(text);
        place(Slot{hash, stored});
        return stored;
    }

    std::size_t size() const { return m_strings.size(); }

private:
    struct Slot {
        std::size_t hash = 0;
        const std::string* text = nullptr;
    };
    // Old slots moved over per string interned: the old table, at most half
    // full when it was replaced, is empty long before the new one is.
    static constexpr std::size_t MoveStep = 8;

    static const std::string* find(const std::vector<Slot>& slots, std::size_t hash, std::string_view text)
    {
        const std::size_t mask = slots.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            const Slot& slot = slots[i];
            if (!slot.text)
                return nullptr;
            if (slot.hash == hash && *slot.text == text)
                return slot.text;
        }
    }

    void place(const Slot& slot)
    {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = slot.hash & mask;
        while (m_slots[i].text)
            i = (i + 1) & mask;
        m_slots[i] = slot;
    }

    void grow()
    {
        moveOver(m_old.size());
        m_old.swap(m_slots);
        m_slots = std::vector<Slot>(2 * m_old.size());
        m_moved = 0;
    }

    // Each old slot is moved once, in the order of the slots; the old table
    // is never searched for a string that the new one has.
    void moveOver(std::size_t count)
    {
        if (m_old.empty())
            return;
        const std::size_t end = std::min(m_old.size(), m_moved + count);
        for (; m_moved < end; ++m_moved)
            if (m_old[m_moved].text)
                place(m_old[m_moved]);
        if (m_moved == m_old.size())
            std::vector<Slot>().swap(m_old);
    }

    // A deque never moves its elements: their addresses are the ids.
    std::deque<std::string> m_strings;
    std::vector<Slot> m_slots;
    // The table being moved over into m_slots, and how far.
    std::vector<Slot> m_old;
    std::size_t m_moved = 0;
};

Pool& pool()
{
    // Never destroyed: ids stay valid in other static objects' destructors,
    // and freeing every string at exit would only cost time.
    static Pool* strings = new Pool;
    return *strings;
}

} // namespace

StringId::StringId(const std::string& text) : m_text(intern(text)) {}

StringId::StringId(const char* text) : m_text(intern(text ? std::string(text) : std::string())) {}

const std::string* StringId::intern(const std::string& text)
{
    return pool().intern(text);
}

const std::string* StringId::emptyText()
{
    static const std::string* empty = intern(std::string());
    return empty;
}

std::size_t StringId::internedCount()
{
    return pool().size();
}

} // namespace LibraryBrowser

#include "platform/StringId.h"

#include <deque>
#include <string_view>
#include <vector>

namespace LibraryBrowser {

namespace {

// The strings, each interned once, and an open-addressed table of them by
// hash. A store of 100,000 blocks interns as many unique paths; a node-based
// set spent more on its buckets' pointer chase and prime-modulo hashing than
// on the strings themselves.
class Pool {
public:
    Pool() : m_slots(1024) { intern(std::string_view()); }

    const std::string* intern(std::string_view text)
    {
        const std::size_t hash = std::hash<std::string_view>()(text);
        std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& slot = m_slots[i];
            if (!slot.text)
                break;
            if (slot.hash == hash && *slot.text == text)
                return slot.text;
        }
        // At most half full, so that probes stay short.
        if (2 * (m_strings.size() + 1) > m_slots.size())
            grow();
        mask = m_slots.size() - 1;
        const std::string* stored = &m_strings.emplace_back(text);
        std::size_t i = hash & mask;
        while (m_slots[i].text)
            i = (i + 1) & mask;
        m_slots[i] = Slot{hash, stored};
        return stored;
    }

    std::size_t size() const { return m_strings.size(); }

private:
    struct Slot {
        std::size_t hash = 0;
        const std::string* text = nullptr;
    };

    void grow()
    {
        std::vector<Slot> slots(2 * m_slots.size());
        const std::size_t mask = slots.size() - 1;
        for (const Slot& slot : m_slots) {
            if (!slot.text)
                continue;
            std::size_t i = slot.hash & mask;
            while (slots[i].text)
                i = (i + 1) & mask;
            slots[i] = slot;
        }
        m_slots.swap(slots);
    }

    // A deque never moves its elements: their addresses are the ids.
    std::deque<std::string> m_strings;
    std::vector<Slot> m_slots;
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

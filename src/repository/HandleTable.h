#pragma once

#include "platform/StringId.h"

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace LibraryBrowser {

class HandleData;

// A reader cache's HandleData per id: open addressing over the ids'
// interned addresses, an entry of two pointers in one array. A walk of a
// million blocks files and drops a handle per node read; a node-based map
// spent a heap block per entry and, growing, rehashed every entry in one
// go (tens of milliseconds in the middle of a read). This table grows in
// steps instead: past half full it takes a table twice the size and moves
// the old one's entries over a few at a time with each entry made, looking
// in both until the old one is empty.
class HandleTable {
public:
    HandleTable();

    // The entry of the id, null if missing.
    HandleData* find(const StringId& id) const;
    // The entry of the id, made empty if missing. The reference holds until
    // the next entry is made.
    HandleData*& entry(const StringId& id);
    // Takes out the id's entry if it is `data`.
    void erase(const StringId& id, const HandleData* data);
    std::size_t size() const { return m_current.count + m_old.count; }

    // Every entry, each once, in no particular order. `visit` must not
    // change the table.
    template <class Visit>
    void forEach(Visit visit) const
    {
        m_old.forEach(visit);
        m_current.forEach(visit);
    }

private:
    struct Slot {
        const void* key;
        HandleData* value;
    };
    struct FreeArray {
        void operator()(Slot* array) const { std::free(array); }
    };
    // One array of slots, a power of two of them, probed linearly.
    struct Slots {
        std::unique_ptr<Slot[], FreeArray> array;
        std::size_t capacity = 0;
        std::size_t count = 0;

        explicit Slots(std::size_t capacity = 0);
        // The slot of the key, or the empty slot where it would go.
        Slot& probe(const void* key) const;
        template <class Visit>
        void forEach(Visit visit) const
        {
            for (std::size_t i = 0; i < capacity; ++i)
                if (isLive(array[i]))
                    visit(array[i].value);
        }
    };
    // The old table's erased entries stay as marks, so that moving its
    // entries over in the order of its slots passes none by.
    static const void* erasedKey();
    static bool isLive(const Slot& slot) { return slot.key && slot.key != erasedKey(); }
    static std::size_t slotOf(const void* key, std::size_t capacity);
    static const void* keyOf(const StringId& id) { return &id.str(); }

    // Moves up to `count` of the old table's slots into the current one.
    void moveOver(std::size_t count);
    // Empties the current table's slot and closes the gap it leaves in its run.
    void removeFromCurrent(Slot& slot);

    Slots m_current;
    Slots m_old;
    // The old table's slots below this are moved over already.
    std::size_t m_moved = 0;
};

} // namespace LibraryBrowser

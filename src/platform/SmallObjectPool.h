#pragma once

#include <cstddef>

namespace LibraryBrowser {

// Memory for the many small objects of the read caches, manifest nodes and
// handles, that a cache reading past its budget frees by the thousand while
// it makes as many again. Each size, rounded up to 16 bytes, has its own
// free list over slabs taken from the system allocator; a freed object's
// place goes to the next object of its size. Given back to the system
// allocator one by one, such frees left it thousands of small pieces to
// merge and sort again at its next large request, a cost that grew with the
// store. Slabs live as long as the process. Thread safe. Under the address
// sanitizer every object comes from the system allocator, so that a use
// after free is still caught.
class SmallObjectPool {
public:
    // The largest size served from a pool; larger ones go to the system.
    static constexpr std::size_t LargestPooled = 1024;

    static void* allocate(std::size_t size);
    // `size` is the one given to allocate().
    static void deallocate(void* object, std::size_t size) noexcept;
};

// Class-scope operators that put a class and its subclasses in the pool.
// Deleting through a base pointer needs a virtual destructor, which passes
// the dynamic class's size.
#define TDLB_POOLED_ALLOCATION                                                                              \
    static void* operator new(std::size_t size) { return ::LibraryBrowser::SmallObjectPool::allocate(size); } \
    static void operator delete(void* object, std::size_t size) noexcept                                    \
    {                                                                                                        \
        ::LibraryBrowser::SmallObjectPool::deallocate(object, size);                                         \
    }

} // namespace LibraryBrowser

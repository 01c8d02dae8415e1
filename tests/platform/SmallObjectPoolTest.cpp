#include "platform/SmallObjectPool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace LibraryBrowser {
namespace {

struct Object {
    unsigned char* bytes;
    std::size_t size;
    unsigned char fill;
};

Object make(std::size_t size, unsigned char fill)
{
    auto* bytes = static_cast<unsigned char*>(SmallObjectPool::allocate(size));
    std::memset(bytes, fill, size);
    return Object{bytes, size, fill};
}

// Objects of every size, freed in another order than made and made again
// among the live ones: each keeps its own bytes (no two overlap, a freed
// place goes only to an object of its size), and each is aligned for any
// type.
TEST(SmallObjectPoolTest, ObjectsMadeAndFreedInAnyOrderKeepTheirOwnBytes)
{
    std::vector<Object> objects;
    const auto sizeOf = [](std::size_t i) { return 1 + (i * 37) % (SmallObjectPool::LargestPooled + 200); };
    for (std::size_t i = 0; i < 30000; ++i)
        objects.push_back(make(sizeOf(i), static_cast<unsigned char>(i)));
    for (std::size_t i = 0; i < objects.size(); i += 3) {
        SmallObjectPool::deallocate(objects[i].bytes, objects[i].size);
        objects[i] = make(sizeOf(i + 1), static_cast<unsigned char>(i + 101));
    }
    for (std::size_t i = 1; i < objects.size(); i += 2) {
        SmallObjectPool::deallocate(objects[i].bytes, objects[i].size);
        objects[i] = make(sizeOf(i * 7), static_cast<unsigned char>(i + 7));
    }
    for (const Object& object : objects) {
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(object.bytes) % alignof(std::max_align_t), 0u);
        for (std::size_t b = 0; b < object.size; ++b)
            ASSERT_EQ(object.bytes[b], object.fill) << "an object of " << object.size << " bytes";
    }
    for (const Object& object : objects)
        SmallObjectPool::deallocate(object.bytes, object.size);
}

} // namespace
} // namespace LibraryBrowser

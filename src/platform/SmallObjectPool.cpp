#include "platform/SmallObjectPool.h"

#include <array>
#include <mutex>
#include <new>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define TDLB_POOL_BYPASS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TDLB_POOL_BYPASS 1
#endif
#endif

namespace LibraryBrowser {

namespace {

constexpr std::size_t Granule = 16;
constexpr std::size_t SlabBytes = 256 * 1024;

// The objects of one size class.
class SizeClass {
public:
    void* allocate(std::size_t size)
    {
        if (m_free) {
            FreeObject* object = m_free;
            m_free = object->next;
            return object;
        }
        if (std::size_t(m_end - m_next) < size) {
            m_slabs.push_back(nullptr);
            m_slabs.back() = static_cast<char*>(::operator new(SlabBytes));
            m_next = m_slabs.back();
            m_end = m_next + SlabBytes - SlabBytes % size;
        }
        void* object = m_next;
        m_next += size;
        return object;
    }

    void deallocate(void* object)
    {
        m_free = new (object) FreeObject{m_free};
    }

private:
    struct FreeObject {
        FreeObject* next;
    };
    FreeObject* m_free = nullptr;
    char* m_next = nullptr;
    char* m_end = nullptr;
    std::vector<char*> m_slabs;
};

struct Pools {
    std::mutex mutex;
    std::array<SizeClass, SmallObjectPool::LargestPooled / Granule> classes;
};

Pools& pools()
{
    // Never destroyed: objects may be freed by other static objects'
    // destructors, and the slabs would only be given back at exit.
    static Pools* instance = new Pools;
    return *instance;
}

std::size_t roundedUp(std::size_t size)
{
    return size == 0 ? Granule : (size + Granule - 1) / Granule * Granule;
}

} // namespace

void* SmallObjectPool::allocate(std::size_t size)
{
#ifndef TDLB_POOL_BYPASS
    if (size <= LargestPooled) {
        const std::size_t rounded = roundedUp(size);
        Pools& all = pools();
        const std::lock_guard<std::mutex> lock(all.mutex);
        return all.classes[rounded / Granule - 1].allocate(rounded);
    }
#endif
    return ::operator new(size);
}

void SmallObjectPool::deallocate(void* object, std::size_t size) noexcept
{
    if (!object)
        return;
#ifndef TDLB_POOL_BYPASS
    if (size <= LargestPooled) {
        Pools& all = pools();
        const std::lock_guard<std::mutex> lock(all.mutex);
        all.classes[roundedUp(size) / Granule - 1].deallocate(object);
        return;
    }
#endif
    ::operator delete(object, size);
}

} // namespace LibraryBrowser

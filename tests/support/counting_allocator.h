#ifndef TESTS_SUPPORT_COUNTING_ALLOCATOR_H
#define TESTS_SUPPORT_COUNTING_ALLOCATOR_H

#include <cstdlib>

#include <brevantis/asn1/runtime/heap.h>

namespace tests {

/// Takes the place of the allocator hooks while it lives: counts blocks, can fail at a given call.
/// No heap may live across its beginning or its end.
class CountingAllocator {
public:
    CountingAllocator() {
        state() = {};
        savedMalloc_ = g_malloc_func;
        savedFree_ = g_free_func;
        g_malloc_func = &CountingAllocator::allocate;
        g_free_func = &CountingAllocator::release;
    }
    ~CountingAllocator() {
        g_malloc_func = savedMalloc_;
        g_free_func = savedFree_;
    }
    CountingAllocator(const CountingAllocator&) = delete;
    CountingAllocator& operator=(const CountingAllocator&) = delete;

    /// Makes the call after @p calls more successful ones fail, and every later one too.
    static void failAfter(long calls) { state().failAt = state().calls + calls; }
    static void neverFail() { state().failAt = -1; }

    static long calls() { return state().calls; } ///< allocations asked for
    static long live() { return state().live; }   ///< blocks not yet given back

private:
    struct State {
        long calls = 0;
        long live = 0;
        long failAt = -1;
    };
    static State& state() {
        static State instance;
        return instance;
    }
    static void* allocate(void* /*userData*/, std::size_t size) {
        State& current = state();
        if (current.failAt >= 0 && current.calls >= current.failAt) {
            ++current.calls;
            return nullptr;
        }
        ++current.calls;
        void* block = std::malloc(size);
        current.live += block != nullptr ? 1 : 0;
        return block;
    }
    static void release(void* /*userData*/, void* block) {
        state().live -= block != nullptr ? 1 : 0;
        std::free(block);
    }

    void* (*savedMalloc_)(void*, std::size_t);
    void (*savedFree_)(void*, void*);
};

} // namespace tests

#endif

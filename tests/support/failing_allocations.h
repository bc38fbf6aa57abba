#ifndef TESTS_SUPPORT_FAILING_ALLOCATIONS_H
#define TESTS_SUPPORT_FAILING_ALLOCATIONS_H

#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/support/error.h>

// Replaces the global allocation functions of the program that includes it, once a program.

namespace tests {

/// What the program and its contexts allocate, while something is watched.
struct Allocations {
    bool watched = false;
    long calls = 0;
    long failAt = -1; ///< the call that fails; -1: none does
    long live = 0;

    static Allocations& state() {
        static Allocations instance;
        return instance;
    }

    static void* allocate(std::size_t size) {
        Allocations& now = state();
        if (now.watched && now.calls++ == now.failAt) {
            return nullptr;
        }
        void* block = std::malloc(size != 0 ? size : 1);
        now.live += now.watched && block != nullptr ? 1 : 0;
        return block;
    }
    static void release(void* block) {
        Allocations& now = state();
        now.live -= now.watched && block != nullptr ? 1 : 0;
        std::free(block);
    }
};

/// Runs an operation with its first, its second, ... allocation failing until it succeeds, whoever
/// allocates: a context's heap or `new`. Each failure must be an exception that tells of memory or
/// of a coder, and must give everything back. What the operation keeps on success it has to keep
/// inside itself.
/// @param afterFailure looks at what the failed operation should have left alone
/// @return the number of failures
template <class Operation, class Check>
long failEveryAllocation(Operation operation, Check afterFailure) {
    void* (*const savedMalloc)(void*, std::size_t) = g_malloc_func;
    void (*const savedFree)(void*, void*) = g_free_func;
    g_malloc_func = [](void*, std::size_t size) { return Allocations::allocate(size); };
    g_free_func = [](void*, void* block) { Allocations::release(block); };
    Allocations& state = Allocations::state();
    operation(); // makes what lives to the end of the process
    long failures = 0;
    for (bool failed = true; failed; failures += failed ? 1 : 0) {
        int code = CRYPT_E_ASN1_MEMORY;
        failed = false;
        state = {true, 0, failures, 0};
        try {
            operation();
        } catch (const std::bad_alloc&) {
            failed = true;
        } catch (const ATL::CAtlException& error) {
            failed = true;
            code = error.m_hr;
        }
        state.watched = false;
        EXPECT_EQ(state.live, 0) << "leaked with allocation " << failures << " failing";
        EXPECT_TRUE(code == CRYPT_E_ASN1_MEMORY || code == CRYPT_E_ASN1_INTERNAL ||
                    code == E_OUTOFMEMORY)
            << std::hex << code;
        EXPECT_TRUE(failed || state.calls <= failures)
            << "allocation " << failures << " failed and nobody told";
        if (failed) {
            afterFailure();
        }
    }
    g_malloc_func = savedMalloc;
    g_free_func = savedFree;
    return failures;
}

template <class Operation>
long failEveryAllocation(Operation operation) {
    return failEveryAllocation(operation, [] {});
}

} // namespace tests

// gcc takes the pair of malloc in one function and free in another for a mismatch.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

void* operator new(std::size_t size) {
    void* block = tests::Allocations::allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return tests::Allocations::allocate(size);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* block) noexcept {
    tests::Allocations::release(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    tests::Allocations::release(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    tests::Allocations::release(block);
}
void operator delete[](void* block) noexcept {
    tests::Allocations::release(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    tests::Allocations::release(block);
}

#endif

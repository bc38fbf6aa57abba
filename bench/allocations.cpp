#include "allocations.h"

#include <algorithm>
#include <cerrno>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

// The allocator of the C library under its own names. The functions below take the public ones, for
// the whole process: the program comes before every library in the search for a symbol.
extern "C" {
void* __libc_malloc(std::size_t size);                    // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);      // NOLINT(bugprone-reserved-identifier)
void* __libc_memalign(std::size_t alignment,
                      std::size_t size); // NOLINT(bugprone-reserved-identifier)
void __libc_free(void* block);           // NOLINT(bugprone-reserved-identifier)
}

namespace {

bool counting = false;
std::ptrdiff_t alive = 0;
bench::Allocations counted;

void notePeak() noexcept {
    counted.peak =
        std::max(counted.peak, static_cast<std::size_t>(std::max<std::ptrdiff_t>(alive, 0)));
}

void* taken(void* block, std::size_t size) noexcept {
    if (counting && block != nullptr) {
        ++counted.calls;
        counted.octets += size;
        alive += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
        notePeak();
    }
    return block;
}

std::ptrdiff_t usable(void* block) noexcept {
    return counting ? static_cast<std::ptrdiff_t>(malloc_usable_size(block)) : 0;
}

} // namespace

extern "C" {

void* malloc(std::size_t size) {
    return taken(__libc_malloc(size), size);
}

void* calloc(std::size_t count, std::size_t size) {
    return taken(__libc_calloc(count, size), count * size);
}

void* realloc(void* block, std::size_t size) {
    const std::ptrdiff_t before = usable(block);
    void* resized = __libc_realloc(block, size);
    if (resized != nullptr || size == 0) {
        alive -= before;
    }
    return taken(resized, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return taken(__libc_memalign(alignment, size), size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

void free(void* block) {
    alive -= usable(block);
    __libc_free(block);
}

// Memory taken from the system directly is memory all the same.

void* mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) {
    void* const mapped =
        reinterpret_cast<void*>(syscall(SYS_mmap, at, size, protection, flags, file, offset));
    if (counting && mapped != MAP_FAILED && (flags & MAP_ANONYMOUS) != 0) {
        ++counted.calls;
        counted.octets += size;
        alive += static_cast<std::ptrdiff_t>(size);
        notePeak();
    }
    return mapped;
}

int munmap(void* mapped, std::size_t size) {
    alive -= counting ? static_cast<std::ptrdiff_t>(size) : 0;
    return static_cast<int>(syscall(SYS_munmap, mapped, size));
}

} // extern "C"

void bench::startCounting() noexcept {
    counted = Allocations();
    alive = 0;
    counting = true;
}

bench::Allocations bench::stopCounting() noexcept {
    counting = false;
    return counted;
}

void bench::giveBackFreeMemory() noexcept {
    malloc_trim(0);
}

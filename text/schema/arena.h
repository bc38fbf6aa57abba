#ifndef BREVANTIS_ASN1_TEXT_SCHEMA_ARENA_H
#define BREVANTIS_ASN1_TEXT_SCHEMA_ARENA_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

namespace asn1text {

/// An arena's limit is reached.
struct ArenaFull {};

/// Constants that are freed together. Standard libraries in use have no <memory_resource>.
class Arena {
public:
    /// @param limit octets
    explicit Arena(std::size_t limit) : left_(limit) {}

    /// So many of them, zeroed; null for none.
    /// @throws ArenaFull, std::bad_alloc
    template <class T>
    T* array(std::size_t count) {
        static_assert(std::is_trivially_destructible_v<T>, "nobody ends them");
        static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "as blocks are");
        if (count == 0) {
            return nullptr;
        }
        if (count > left_ / sizeof(T)) {
            throw ArenaFull();
        }
        left_ -= count * sizeof(T);
        return new (take(count * sizeof(T), alignof(T))) T[count]();
    }

    /// A terminated copy.
    const char* text(std::string_view text) {
        char* const copy = array<char>(text.size() + 1);
        text.copy(copy, text.size());
        return copy;
    }

private:
    void* take(std::size_t size, std::size_t alignment) {
        if (std::align(alignment, size, next_, room_) == nullptr) {
            const std::size_t block = std::max(size, blockSize_);
            blocks_.emplace_back();
            blocks_.back().reset(new std::byte[block]);
            blockSize_ = std::min(2 * blockSize_, std::size_t{1} << 20);
            next_ = blocks_.back().get();
            room_ = block;
        }
        void* const taken = next_;
        next_ = static_cast<std::byte*>(next_) + size;
        room_ -= size;
        return taken;
    }

    std::size_t left_;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::size_t blockSize_ = 1024;
    void* next_ = nullptr;
    std::size_t room_ = 0;
};

} // namespace asn1text

#endif

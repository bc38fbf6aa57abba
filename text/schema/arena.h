#ifndef BREVANTIS_ASN1_TEXT_SCHEMA_ARENA_H
#define BREVANTIS_ASN1_TEXT_SCHEMA_ARENA_H

#include <cstddef>
#include <memory_resource>
#include <new>
#include <string_view>
#include <type_traits>

namespace asn1text {

/// An arena's limit is reached.
struct ArenaFull {};

/// Constants that are freed together.
class Arena {
public:
    /// @param limit octets
    explicit Arena(std::size_t limit) : left_(limit) {}

    /// So many of them, zeroed; null for none.
    /// @throws ArenaFull, std::bad_alloc
    template <class T>
    T* array(std::size_t count) {
        static_assert(std::is_trivially_destructible_v<T>, "nobody ends them");
        if (count == 0) {
            return nullptr;
        }
        if (count > left_ / sizeof(T)) {
            throw ArenaFull();
        }
        left_ -= count * sizeof(T);
        void* const place = octets_.allocate(count * sizeof(T), alignof(T));
        return new (place) T[count]();
    }

    /// A terminated copy.
    const char* text(std::string_view text) {
        char* const copy = array<char>(text.size() + 1);
        text.copy(copy, text.size());
        return copy;
    }

private:
    std::size_t left_;
    std::pmr::monotonic_buffer_resource octets_;
};

} // namespace asn1text

#endif

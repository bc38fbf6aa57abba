#ifndef BREVANTIS_ASN1_TEXT_OCTETS_H
#define BREVANTIS_ASN1_TEXT_OCTETS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <brevantis/asn1/text/export.h>

/// @file
/// Octets that are looked at, held elsewhere, and their hexadecimal digits.

namespace asn1text {

/// Octets that stand for themselves.
using OctetStore = std::vector<unsigned char>;

/// Octets that somebody else holds, and that outlive whoever looks at them.
class Octets {
public:
    /// No octets.
    constexpr Octets() = default;
    /// @param data outlives the object; may be null when @p size is 0
    constexpr Octets(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}
    /// The octets of a store, valid until it changes its size or goes.
    Octets(const OctetStore& store) : data_(store.data()), size_(store.size()) {}

    /// The first of them; may be null when there are none.
    constexpr const unsigned char* data() const { return data_; }
    constexpr std::size_t size() const { return size_; }
    constexpr bool empty() const { return size_ == 0; }
    constexpr const unsigned char* begin() const { return data_; }
    constexpr const unsigned char* end() const { return data_ + size_; }
    /// @param place below the count
    constexpr unsigned char operator[](std::size_t place) const { return data_[place]; }
    /// The last of them; there is one at least.
    constexpr unsigned char back() const { return data_[size_ - 1]; }

    /// The first octets. @param count at most as many as there are
    constexpr Octets first(std::size_t count) const { return {data_, count}; }
    /// The last octets. @param count at most as many as there are
    constexpr Octets last(std::size_t count) const { return {data_ + size_ - count, count}; }
    /// What is behind the first octets. @param offset at most as many as there are
    constexpr Octets subspan(std::size_t offset) const { return {data_ + offset, size_ - offset}; }
    constexpr Octets subspan(std::size_t offset, std::size_t count) const {
        return {data_ + offset, count};
    }

private:
    const unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
};

/// Two hexadecimal digits an octet, in lower case.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string hexText(Octets octets);

/// The octets that hexadecimal digits stand for, two an octet, of either case.
/// @param octets receives them; of a text that is something else, those in front of that
/// @return whether the text is nothing else
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API bool readHex(std::string_view digits, OctetStore& octets);

/// The value of a hexadecimal digit of either case; -1 for anything else.
constexpr int hexDigit(unsigned char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    const int letter = character | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

} // namespace asn1text

#endif

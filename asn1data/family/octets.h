#ifndef BREVANTIS_ASN1DATA_FAMILY_OCTETS_H
#define BREVANTIS_ASN1DATA_FAMILY_OCTETS_H

#include <algorithm>
#include <climits>
#include <cstddef>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/header.h>

// Octets of a message that rules look at.

namespace asn1data::family {

/// Octets that belong to somebody else.
class Octets {
public:
    Octets() = default;
    Octets(const unsigned char* data, std::size_t size) : data_(data), size_(size) {}

    const unsigned char* begin() const { return data_; }
    const unsigned char* end() const { return data_ + size_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    unsigned char operator[](std::size_t place) const { return data_[place]; }
    unsigned char back() const { return data_[size_ - 1]; }
    /// At most @p count of them.
    Octets first(std::size_t count) const { return {data_, std::min(count, size_)}; }
    /// Without the first @p count, which are there.
    Octets behind(std::size_t count) const { return {data_ + count, size_ - count}; }

private:
    const unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
};

/// Reads the header that octets begin with.
/// @return whether there is one that decoders take
inline bool readHeader(Octets octets, ASN1Header& header) {
    const auto count = static_cast<unsigned>(std::min<std::size_t>(octets.size(), INT_MAX));
    return rtReadHeader(octets.begin(), count, &header) == ASN1S_SUCCESS;
}

/// The contents of a primitive in primitive form, and of a string in segments the segments.
inline Octets contentsOf(const WalkElement& element) {
    return element.contentLength > 0 ? Octets(element.data + element.headerLength,
                                              static_cast<std::size_t>(element.contentLength))
                                     : Octets();
}

/// Whether nothing is known of an element but its octets.
inline bool isRaw(const WalkElement& element) {
    return element.type == nullptr || element.type->shape == Shape::OpenType;
}

} // namespace asn1data::family

#endif

#include "value_octets.h"

#include <algorithm>

#include "header.h"
#include "value_kind.h"

namespace derview {

using asn1data::WalkElement;

namespace {

/// Goes from segment to segment of a string in constructed form. The walk has read them, so that
/// all lengths are known to fit.
template <class Take>
void forEachSegment(const WalkElement& element, Take take) {
    constexpr std::size_t longestHeader = 16;
    const unsigned char* place = element.data + element.headerLength;
    const bool bits = valueKind(element) == ValueKind::Bits;
    std::size_t left = element.value.octetCount;
    while (left != 0) {
        const Header header = readHeader({place, longestHeader});
        if (header.size == 0) {
            return;
        }
        place += header.size;
        // In front of the last segment's bits stands the count of the unused ones. The decoder
        // keeps those of the other segments as data.
        const std::size_t leading = bits && header.length == left + 1 ? 1 : 0;
        const std::size_t size = std::min(header.length - leading, left);
        if (!take(Octets(place + leading, size))) {
            return;
        }
        left -= size;
        place += header.length;
    }
}

} // namespace

Octets valueOctets(const WalkElement& element, std::size_t limit, OctetStore& store) {
    const std::size_t count = std::min<std::size_t>(element.value.octetCount, limit);
    if (!element.segmented) {
        return {element.value.octets, element.value.octets != nullptr ? count : 0};
    }
    store.clear();
    store.reserve(count);
    forEachSegment(element, [&](Octets segment) {
        const Octets part = segment.first(std::min(segment.size(), count - store.size()));
        store.insert(store.end(), part.begin(), part.end());
        return store.size() < count;
    });
    return store;
}

std::string hexText(Octets octets) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(octets.size() * 2);
    for (const unsigned char octet : octets) {
        text += digits[octet >> 4];
        text += digits[octet & 0xFu];
    }
    return text;
}

} // namespace derview

#ifndef BREVANTIS_ASN1DATA_REVOCATION_LIST_INDEX_FORMAT_H
#define BREVANTIS_ASN1DATA_REVOCATION_LIST_INDEX_FORMAT_H

#include <brevantis/asn1/asn1data/revocation_list.h>

#include "octet_digest.h"

// The octets of an index. All numbers have 8 octets, the lowest first.
//
//   header       its fields, at the places below
//   records      one an entry: the high bits of the hash of its serial number, and below them as
//   many
//                bits as it takes to number the octets of the list for the place of the entry. In
//                ascending order of their highest bits, as many as the header tells, and for the
//                same bits in the order of the list
//   checkpoints  pairs of an entry's place and the place of the nearest entry in front of it, or
//   the
//                same, that has a certificateIssuer: one for the first entry that has one, and one
//                each CheckpointDistance entries from there on; in ascending order
//
namespace asn1data::revocation_list {

enum : std::size_t {
    MarkPlace = 0,
    SortedBitsPlace = 8, ///< by how many bits the records are sorted
    ListSizePlace = 16,
    ListDigestPlace = 24,
    CountPlace = 32,
    CheckpointCountPlace = 40,
    ReservedPlace = 48, ///< 0
    DigestPlace = 56,   ///< of the header in front of it and all behind the header
    HeaderSize = 64,
    RecordSize = 8,
    CheckpointSize = 16,
    CheckpointDistance = 256
};

/// "revindex" with the version of the format in place of the last octet.
enum : std::uint64_t { Mark = UINT64_C(0x0165646E69766572), VersionMask = UINT64_C(0xFF) << 56 };

/// At least 24 bits of a record are hash.
enum : unsigned { LargestOffsetBits = 40 };

/// Bits that number every octet of a list.
inline unsigned offsetBitsFor(std::size_t listSize) noexcept {
    unsigned bits = 1;
    while (bits < 64 && listSize >> bits != 0) {
        ++bits;
    }
    return bits;
}

/// An INTEGER without the octets that do not change it (X.690, 8.3.2); 0 for no octets.
inline OctetSpan shortest(OctetSpan number) noexcept {
    static constexpr unsigned char zero = 0;
    if (number.size == 0) {
        return {&zero, 1};
    }
    while (number.size > 1 && ((number.data[0] == 0x00 && number.data[1] < 0x80) ||
                               (number.data[0] == 0xFF && number.data[1] >= 0x80))) {
        ++number.data;
        --number.size;
    }
    return number;
}

/// A hash of a serial number, whose high bits are spread evenly.
/// @param number as `shortest` gives it
inline std::uint64_t serialHash(OctetSpan number) noexcept {
    std::uint64_t hash = number.size;
    if (number.size < 8) {
        std::uint64_t octets = 0;
        for (std::size_t i = 0; i < number.size; ++i) {
            octets = octets << 8 | number.data[i];
        }
        return mixed(hash ^ octets << 8);
    }
    const unsigned char* const last = number.data + number.size - 8;
    for (; number.data < last; number.data += 8) {
        hash = mixed(hash ^ loadNumber(number.data));
    }
    return mixed(hash ^ loadNumber(last)); // some of these octets twice, unless 8 divides the size
}

} // namespace asn1data::revocation_list

#endif

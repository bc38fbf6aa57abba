#include <brevantis/asn1/runtime/bit_set.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "heap_block.h"

using runtime_detail::octetsOfBits;

namespace {

constexpr unsigned int maskOf(unsigned int bit) noexcept {
    return 0x80u >> (bit & 7);
}

/// Mask of the first @p bits & 7 bits of an octet, of all for 0: the bits in use of a last octet.
constexpr unsigned int lastOctetMask(unsigned int bits) noexcept {
    return (bits & 7) != 0 ? 0xFFu << (8 - (bits & 7)) & 0xFF : 0xFF;
}

/// Applies @p operation (octet, mask) to the octets of the bits from @p from to @p to - 1, as far
/// as they lie below @p octetLimit.
template <class Operation>
void applyToRange(unsigned char* octets, unsigned int octetLimit, unsigned int from,
                  unsigned int to, Operation operation) noexcept {
    if (from >= to) {
        return;
    }
    const unsigned int first = from >> 3;
    const unsigned int last = (to - 1) >> 3;
    const unsigned int end = std::min(last + 1, octetLimit);
    for (unsigned int i = first; i < end; ++i) {
        unsigned int mask = 0xFF;
        if (i == first) {
            mask &= 0xFFu >> (from & 7);
        }
        if (i == last) {
            mask &= lastOctetMask(to);
        }
        octets[i] = static_cast<unsigned char>(operation(octets[i], mask));
    }
}

unsigned int withBits(unsigned int octet, unsigned int mask) noexcept {
    return octet | mask;
}
unsigned int withoutBits(unsigned int octet, unsigned int mask) noexcept {
    return octet & ~mask;
}
unsigned int withBitsInverted(unsigned int octet, unsigned int mask) noexcept {
    return octet ^ mask;
}

/// Applies @p operation (octet, mask) to octets, with as many bits of others as masks.
template <class Operation>
void applyBits(unsigned char* octets, const unsigned char* bits, unsigned int count,
               Operation operation) noexcept {
    const unsigned int end = octetsOfBits(count);
    for (unsigned int i = 0; i < end; ++i) {
        const unsigned int mask = i + 1 == end ? bits[i] & lastOctetMask(count) : bits[i];
        octets[i] = static_cast<unsigned char>(operation(octets[i], mask));
    }
}

} // namespace

int rtSetBit(unsigned char* bits, unsigned int numbits, unsigned int index) noexcept {
    if (index >= numbits) {
        return ASN1S_OUT_OF_BOUNDS;
    }
    unsigned char& octet = bits[index >> 3];
    const unsigned int before = octet & maskOf(index);
    octet = static_cast<unsigned char>(withBits(octet, maskOf(index)));
    return static_cast<int>(before);
}

int rtClearBit(unsigned char* bits, unsigned int numbits, unsigned int index) noexcept {
    if (index >= numbits) {
        return ASN1S_OUT_OF_BOUNDS;
    }
    unsigned char& octet = bits[index >> 3];
    const unsigned int before = octet & maskOf(index);
    octet = static_cast<unsigned char>(withoutBits(octet, maskOf(index)));
    return static_cast<int>(before);
}

int rtTestBit(const unsigned char* bits, unsigned int numbits, unsigned int index) noexcept {
    return index < numbits ? static_cast<int>(bits[index >> 3] & maskOf(index)) : 0;
}

int rtOctetBitLen(int octet) noexcept {
    int length = 8;
    for (unsigned int rest = static_cast<unsigned int>(octet) & 0xFF; length > 0 && (rest & 1) == 0;
         rest >>= 1) {
        --length;
    }
    return length;
}

int ASN1CBitStr::fail(int status) const {
    return rtErrSetData(&context->errInfo, status, nullptr, 0);
}

unsigned char* ASN1CBitStr::octets() const {
    // Whoever binds a string to a record vouches that its octets may be written.
    return const_cast<unsigned char*>(*pBits);
}

int ASN1CBitStr::checkRange(unsigned int from, unsigned int to) const {
    if (from > maxNumBits || to > maxNumBits) {
        return fail(ASN1S_OUT_OF_BOUNDS);
    }
    return from > to ? fail(ASN1S_RANGE_ERROR) : 0;
}

int ASN1CBitStr::makeRoom(unsigned int bit) {
    // The very last number has no count above it.
    if (bit > maxNumBits || bit == Unlimited) {
        return fail(ASN1S_OUT_OF_BOUNDS);
    }
    return checkCapacity(static_cast<int>(bit / 8) + 1);
}

int ASN1CBitStr::makeRoom(unsigned int from, unsigned int to) {
    const int status = checkRange(from, to);
    return status != 0 ? status : checkCapacity(static_cast<int>(octetsOfBits(to)));
}

int ASN1CBitStr::size() const {
    return unitsUsed;
}

unsigned int ASN1CBitStr::length() const {
    if (unitsUsed <= 0) {
        return 0;
    }
    const auto used = static_cast<unsigned int>(unitsUsed);
    return static_cast<unsigned int>(rtOctetBitLen(octets()[used - 1])) + (used - 1) * 8;
}

unsigned int ASN1CBitStr::cardinality() const {
    const unsigned char* const data = octets();
    unsigned int count = 0;
    int i = 0;
    for (; unitsUsed - i >= 8; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, data + i, sizeof word);
        count += static_cast<unsigned int>(__builtin_popcountll(word));
    }
    for (; i < unitsUsed; ++i) {
        count += static_cast<unsigned int>(__builtin_popcount(data[i]));
    }
    return count;
}

int ASN1CBitStr::unusedBitsInLastUnit() const {
    return unitsUsed > 0 ? 8 - rtOctetBitLen(octets()[unitsUsed - 1]) : 0;
}

void ASN1CBitStr::recalculateUnitsUsed() {
    const unsigned char* const data = octets();
    while (unitsUsed > 0 && data[unitsUsed - 1] == 0) {
        --unitsUsed;
    }
    *pNumBits = length();
}

int ASN1CBitStr::set(unsigned int bit) {
    if (const int status = makeRoom(bit)) {
        return status;
    }
    applyToRange(octets(), bit / 8 + 1, bit, bit + 1, withBits);
    *pNumBits = std::max(*pNumBits, bit + 1);
    return 0;
}

int ASN1CBitStr::set(unsigned int from, unsigned int to) {
    if (const int status = makeRoom(from, to)) {
        return status;
    }
    *pNumBits = std::max(*pNumBits, to);
    applyToRange(octets(), octetsOfBits(to), from, to, withBits);
    return 0;
}

int ASN1CBitStr::clear() {
    if (unitsUsed > 0) {
        std::memset(octets(), 0, static_cast<std::size_t>(unitsUsed));
    }
    unitsUsed = 0;
    *pNumBits = 0;
    return 0;
}

int ASN1CBitStr::clear(unsigned int bit) {
    if (bit > maxNumBits) {
        return fail(ASN1S_OUT_OF_BOUNDS);
    }
    if (static_cast<int>(bit / 8) < unitsUsed) {
        unsigned char& octet = octets()[bit / 8];
        octet = static_cast<unsigned char>(withoutBits(octet, maskOf(bit)));
        recalculateUnitsUsed();
    }
    return 0;
}

int ASN1CBitStr::clear(unsigned int from, unsigned int to) {
    const int status = checkRange(from, to);
    if (status != 0) {
        return status;
    }
    if (static_cast<int>(from / 8) < unitsUsed) {
        applyToRange(octets(), static_cast<unsigned int>(unitsUsed), from, to, withoutBits);
        recalculateUnitsUsed();
    }
    return 0;
}

int ASN1CBitStr::invert(unsigned int bit) {
    if (const int status = makeRoom(bit)) {
        return status;
    }
    applyToRange(octets(), bit / 8 + 1, bit, bit + 1, withBitsInverted);
    recalculateUnitsUsed();
    return 0;
}

int ASN1CBitStr::invert(unsigned int from, unsigned int to) {
    if (const int status = makeRoom(from, to)) {
        return status;
    }
    applyToRange(octets(), octetsOfBits(to), from, to, withBitsInverted);
    recalculateUnitsUsed();
    return 0;
}

int ASN1CBitStr::get(unsigned int bit) const {
    if (bit > maxNumBits || static_cast<int>(bit / 8) >= unitsUsed) {
        return 0;
    }
    return (octets()[bit / 8] & maskOf(bit)) != 0 ? 1 : 0;
}

int ASN1CBitStr::get(unsigned int from, unsigned int to, unsigned char* out, int size) const {
    const int status = checkRange(from, to);
    if (status != 0) {
        return status;
    }
    if (std::int64_t{to} - from > std::int64_t{size} * 8) {
        return fail(ASN1S_STRING_OVERFLOW);
    }
    if (size > 0) {
        std::memset(out, 0, static_cast<std::size_t>(size));
    }
    const unsigned int end = std::min(to, length());
    if (from >= end) {
        return 0;
    }
    const unsigned char* const source = octets() + from / 8;
    const unsigned int shift = from & 7;
    const unsigned int available = octetsOfBits(end) - from / 8;
    const unsigned int count = octetsOfBits(end - from);
    for (unsigned int i = 0; i < count; ++i) {
        const unsigned int behind = i + 1 < available ? source[i + 1] : 0u;
        out[i] = static_cast<unsigned char>((unsigned{source[i]} << 8 | behind) << shift >> 8);
    }
    out[count - 1] = static_cast<unsigned char>(out[count - 1] & lastOctetMask(end - from));
    return 0;
}

int ASN1CBitStr::getBytes(unsigned char* out, int size) const {
    if (unitsUsed > size) {
        return fail(ASN1S_INVALID_LENGTH);
    }
    const auto used = static_cast<std::size_t>(unitsUsed);
    if (used != 0) {
        std::memcpy(out, octets(), used);
    }
    if (size > unitsUsed) {
        std::memset(out + used, 0, static_cast<std::size_t>(size - unitsUsed));
    }
    return 0;
}

int ASN1CBitStr::doAnd(const unsigned char* bits, unsigned int numBits) {
    if (numBits == 0) {
        return clear();
    }
    if (bits == nullptr || bits == *pBits) {
        return fail(ASN1S_INVALID_PARAMETER);
    }
    const int count = std::min(static_cast<int>(octetsOfBits(numBits)), unitsUsed);
    unsigned char* const data = octets();
    for (int i = 0; i < count; ++i) {
        data[i] = static_cast<unsigned char>(data[i] & bits[i]);
    }
    std::fill(data + count, data + unitsUsed, static_cast<unsigned char>(0));
    unitsUsed = count;
    recalculateUnitsUsed();
    return 0;
}

int ASN1CBitStr::doOr(const unsigned char* bits, unsigned int numBits) {
    if (numBits == 0) {
        // Kept: an operand without bits sets them all.
        return maxNumBits != Unlimited ? set(0, maxNumBits) : fail(ASN1S_INVALID_PARAMETER);
    }
    if (bits == nullptr || bits == *pBits) {
        return fail(ASN1S_INVALID_PARAMETER);
    }
    const unsigned int taken = std::min(numBits, maxNumBits);
    const int count = static_cast<int>(octetsOfBits(taken));
    const int status = checkCapacity(count);
    if (status != 0) {
        return status;
    }
    applyBits(octets(), bits, taken, withBits);
    *pNumBits = length();
    return 0;
}

int ASN1CBitStr::doXor(const unsigned char* bits, unsigned int numBits) {
    if (numBits == 0) {
        return 0;
    }
    if (bits == nullptr) {
        return fail(ASN1S_INVALID_PARAMETER);
    }
    const unsigned int taken = std::min(numBits, maxNumBits);
    const int count = static_cast<int>(octetsOfBits(taken));
    const bool own = bits == *pBits;
    if (count > unitsUsed) {
        const int status = checkCapacity(count);
        if (status != 0) {
            return status;
        }
    }
    unsigned char* const data = octets();
    // Growth may have moved the string's own octets from under the argument.
    const unsigned char* const source = own ? data : bits;
    applyBits(data, source, taken, withBitsInverted);
    recalculateUnitsUsed();
    return 0;
}

int ASN1CBitStr::doAndNot(const unsigned char* bits, unsigned int numBits) {
    if (numBits == 0) {
        return 0;
    }
    if (bits == nullptr) {
        return fail(ASN1S_INVALID_PARAMETER);
    }
    const int count = std::min(static_cast<int>(octetsOfBits(numBits)), unitsUsed);
    unsigned char* const data = octets();
    for (int i = 0; i < count; ++i) {
        data[i] = static_cast<unsigned char>(data[i] & ~unsigned{bits[i]});
    }
    recalculateUnitsUsed();
    return 0;
}

int ASN1CBitStr::shiftLeft(unsigned int count) {
    const unsigned int bits = length();
    if (bits == 0) {
        return 0;
    }
    if (count >= bits) {
        return clear();
    }
    unsigned char* const data = octets();
    const auto used = static_cast<unsigned int>(unitsUsed);
    const unsigned int remaining = octetsOfBits(bits - count);
    const unsigned int skipped = count / 8;
    const unsigned int shift = count & 7;
    for (unsigned int i = 0; i < remaining; ++i) {
        const unsigned int behind = i + skipped + 1 < used ? data[i + skipped + 1] : 0u;
        data[i] =
            static_cast<unsigned char>((unsigned{data[i + skipped]} << 8 | behind) << shift >> 8);
    }
    std::fill(data + remaining, data + used, static_cast<unsigned char>(0));
    recalculateUnitsUsed();
    return 0;
}

int ASN1CBitStr::shiftRight(unsigned int count) {
    const std::int64_t bits = length();
    if (bits == 0) {
        return 0;
    }
    const bool growable = maxNumBits == Unlimited;
    const std::int64_t moved = growable ? bits : bits - count;
    if (moved <= 0) {
        return clear();
    }
    const std::int64_t total = moved + count;
    if (total > std::int64_t{Unlimited}) {
        return fail(ASN1S_OUT_OF_BOUNDS);
    }
    const std::int64_t last = (total - 1) / 8;
    if (growable) {
        const int status = checkCapacity(static_cast<int>(last) + 1);
        if (status != 0) {
            return status;
        }
    }

    // Kept: the last source octet that is moved whole; the bits behind it go to the last octet
    // alone. That is wrong for the lengths which the header tells, and programs depend on the exact
    // octets.
    const std::int64_t source = (moved + 1) / 8 - 1;
    unsigned char* const data = octets();
    const auto octetAt = [&](std::int64_t i) { return i < unitsUsed ? unsigned{data[i]} : 0u; };
    const unsigned int right = count & 7;
    const unsigned int left = 8 - right;
    std::int64_t target = last;
    if (left < (static_cast<unsigned int>(moved) & 7)) {
        data[last] = static_cast<unsigned char>(octetAt(source + 1) << left);
        target = last - 1;
    }
    for (std::int64_t i = source; i >= 0; --i) {
        data[i + target - source] =
            static_cast<unsigned char>(octetAt(i) << left | octetAt(i + 1) >> right);
    }
    if (target - 1 - source >= 0) {
        data[target - 1 - source] = static_cast<unsigned char>(data[0] >> right);
    }
    std::fill(data, data + count / 8, static_cast<unsigned char>(0));
    if (!growable) {
        data[unitsUsed - 1] =
            static_cast<unsigned char>(data[unitsUsed - 1] & lastOctetMask(maxNumBits));
    }
    recalculateUnitsUsed();
    return 0;
}

#ifndef BREVANTIS_ASN1DATA_REVOCATION_LIST_OCTET_DIGEST_H
#define BREVANTIS_ASN1DATA_REVOCATION_LIST_OCTET_DIGEST_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace asn1data::revocation_list {

/// The number itself where the lowest octet comes first in memory, else with its octets turned.
inline std::uint64_t lowestFirst(std::uint64_t number) noexcept {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return __builtin_bswap64(number);
#else
    return number;
#endif
}

/// The number that 8 octets are, the first the lowest.
inline std::uint64_t loadNumber(const unsigned char* octets) noexcept {
    std::uint64_t number = 0;
    std::memcpy(&number, octets, sizeof number);
    return lowestFirst(number);
}

inline void storeNumber(unsigned char* octets, std::uint64_t number) noexcept {
    number = lowestFirst(number);
    std::memcpy(octets, &number, sizeof number);
}

/// Odd, with bits in no pattern.
enum : std::uint64_t {
    FirstFactor = UINT64_C(0x9E3779B97F4A7C15),
    SecondFactor = UINT64_C(0xD6E8FEB86659FD93)
};

/// Spreads what tells two numbers apart over the high bits. No two numbers come out the same.
inline std::uint64_t mixed(std::uint64_t number) noexcept {
    number *= FirstFactor;
    number ^= number >> 32;
    number *= SecondFactor;
    return number ^ number >> 29;
}

/// A digest of 64 bits over octets that become known from the first on, so that they can be taken
/// while they are in the cache. Eight lanes take 8 octets each in turn; a lane maps what it held
/// and what it takes one to one, so octets that differ in one place of 8 never have the same
/// digest. It is no cryptographic one.
class OctetDigest {
public:
    /// Takes what has not been taken of the octets in front of @p end, or some octets less.
    /// @param first of all octets, the same at each call
    /// @param end octets from @p first that are known
    void advance(const unsigned char* first, std::size_t end) noexcept {
        // In locals: the octets might be the lanes, for all that a compiler knows.
        std::uint64_t a = lanes_[0];
        std::uint64_t b = lanes_[1];
        std::uint64_t c = lanes_[2];
        std::uint64_t d = lanes_[3];
        std::uint64_t e = lanes_[4];
        std::uint64_t f = lanes_[5];
        std::uint64_t g = lanes_[6];
        std::uint64_t h = lanes_[7];
        for (; end - taken_ >= 64; taken_ += 64) {
            const unsigned char* const octets = first + taken_;
            a = step(a, loadNumber(octets));
            b = step(b, loadNumber(octets + 8));
            c = step(c, loadNumber(octets + 16));
            d = step(d, loadNumber(octets + 24));
            e = step(e, loadNumber(octets + 32));
            f = step(f, loadNumber(octets + 40));
            g = step(g, loadNumber(octets + 48));
            h = step(h, loadNumber(octets + 56));
        }
        lanes_[0] = a;
        lanes_[1] = b;
        lanes_[2] = c;
        lanes_[3] = d;
        lanes_[4] = e;
        lanes_[5] = f;
        lanes_[6] = g;
        lanes_[7] = h;
    }

    /// Takes the rest of all octets.
    std::uint64_t finish(const unsigned char* first, std::size_t size) noexcept {
        advance(first, size);
        std::uint64_t digest = mixed(size);
        for (const std::uint64_t lane : lanes_) {
            digest = mixed(digest ^ lane);
        }
        for (; taken_ < size; ++taken_) {
            digest = mixed(digest ^ first[taken_]);
        }
        return digest;
    }

private:
    static std::uint64_t step(std::uint64_t lane, std::uint64_t number) noexcept {
        lane = (lane ^ number) * FirstFactor;
        return lane << 29 | lane >> 35;
    }

    std::uint64_t lanes_[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    std::size_t taken_ = 0;
};

} // namespace asn1data::revocation_list

#endif

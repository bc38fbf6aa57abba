#ifndef DERVIEW_KEYED_DIGEST_H
#define DERVIEW_KEYED_DIGEST_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

namespace derview {

/// A digest with a key that each process draws, so that nobody can make values that are different
/// and look the same: SipHash-1-3, by words.
class KeyedDigest {
public:
    void add(std::uint64_t word) {
        v3_ ^= word;
        round();
        v0_ ^= word;
        ++words_;
    }
    /// Octets, and how many they are.
    void add(const unsigned char* octets, std::size_t size) {
        for (std::size_t done = 0; done < size; done += sizeof(std::uint64_t)) {
            const std::size_t left = size - done;
            std::uint64_t word = 0;
            std::memcpy(&word, octets + done, left < sizeof word ? left : sizeof word);
            add(word);
        }
        add(static_cast<std::uint64_t>(size));
    }
    std::uint64_t value() {
        add(words_);
        v2_ ^= 0xFF;
        round();
        round();
        round();
        return v0_ ^ v1_ ^ v2_ ^ v3_;
    }

private:
    struct Key {
        std::uint64_t low, high;
    };
    static const Key& key() {
        static const Key drawn = [] {
            std::random_device device;
            const auto word = [&device] { return std::uint64_t{device()} << 32 | device(); };
            return Key{word(), word()};
        }();
        return drawn;
    }

    static std::uint64_t rotated(std::uint64_t word, int bits) {
        return word << bits | word >> (64 - bits);
    }
    void round() {
        v0_ += v1_;
        v2_ += v3_;
        v1_ = rotated(v1_, 13) ^ v0_;
        v3_ = rotated(v3_, 16) ^ v2_;
        v0_ = rotated(v0_, 32);
        v2_ += v1_;
        v0_ += v3_;
        v1_ = rotated(v1_, 17) ^ v2_;
        v3_ = rotated(v3_, 21) ^ v0_;
        v2_ = rotated(v2_, 32);
    }

    std::uint64_t v0_ = key().low ^ 0x736F6D6570736575;
    std::uint64_t v1_ = key().high ^ 0x646F72616E646F6D;
    std::uint64_t v2_ = key().low ^ 0x6C7967656E657261;
    std::uint64_t v3_ = key().high ^ 0x7465646279746573;
    std::uint64_t words_ = 0;
};

} // namespace derview

#endif

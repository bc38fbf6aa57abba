#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/bit_set.h>

#include "support/counting_allocator.h"
#include "support/hex.h"

namespace {

/// As a generated class derives.
class Bits : public ASN1CBitStr {
public:
    using ASN1CBitStr::ASN1CBitStr;
    using ASN1CBitStr::init;

    std::string hex() const { return tests::toHex(*pBits, static_cast<std::size_t>(unitsUsed)); }
    int recorded() const { return context->errInfo.status; }
    void forget() { rtErrReset(&context->errInfo); }
};

struct Holder {
    ASN1BERDecodeBuffer buffer;
    Bits growable{buffer, 0u};
};

/// A growable string with the given octets, which must not end in a zero octet.
struct GrowableBits : Holder {
    explicit GrowableBits(const std::string& hex) {
        const tests::Octets octets = tests::fromHex(hex);
        growable.doXor(octets.data(), static_cast<unsigned int>(octets.size()) * 8);
    }
};

TEST(BitArray, plainFunctions) {
    unsigned char bits[2] = {0x80, 0};
    EXPECT_EQ(rtSetBit(bits, 12, 0), 0x80);
    EXPECT_EQ(rtSetBit(bits, 12, 11), 0);
    EXPECT_EQ(bits[1], 0x10);
    EXPECT_EQ(rtTestBit(bits, 12, 11), 0x10);
    EXPECT_EQ(rtTestBit(bits, 11, 11), 0);
    EXPECT_EQ(rtClearBit(bits, 12, 11), 0x10);
    EXPECT_EQ(rtClearBit(bits, 12, 11), 0);
    EXPECT_EQ(rtSetBit(bits, 12, 12), ASN1S_OUT_OF_BOUNDS);
    EXPECT_EQ(rtClearBit(bits, 12, 12), ASN1S_OUT_OF_BOUNDS);
    for (int octet = 0; octet < 256; ++octet) {
        int length = 0;
        for (int i = 0; i < 8; ++i) {
            length = (octet & (0x80 >> i)) != 0 ? i + 1 : length;
        }
        EXPECT_EQ(rtOctetBitLen(octet), length);
    }
}

/// A set of bits as plainly as can be; `limit` 0 means none.
class Model {
public:
    explicit Model(unsigned int limit) : limit_(limit), bits_(limit) {}

    bool has(unsigned int bit) const { return bit < bits_.size() && bits_[bit]; }
    void put(unsigned int bit, bool value) {
        if (bit >= bits_.size()) {
            if (limit_ != 0 || !value) {
                return;
            }
            bits_.resize(bit + 1);
        }
        bits_[bit] = value;
    }
    unsigned int length() const {
        auto length = static_cast<unsigned int>(bits_.size());
        while (length > 0 && !bits_[length - 1]) {
            --length;
        }
        return length;
    }
    /// Replaces each bit below @p end by what @p value says of it, from the state before.
    void each(unsigned int end, const std::function<bool(const Model&, unsigned int)>& value) {
        const Model before = *this;
        for (unsigned int i = 0; i < end; ++i) {
            put(i, value(before, i));
        }
    }
    std::vector<unsigned char> octets(std::size_t count) const {
        std::vector<unsigned char> octets(count);
        for (unsigned int i = 0; i < count * 8; ++i) {
            octets[i / 8] =
                static_cast<unsigned char>(octets[i / 8] | (has(i) ? 0x80 >> i % 8 : 0));
        }
        return octets;
    }

private:
    unsigned int limit_;
    std::vector<bool> bits_;
};

void expectSame(const Bits& bits, const Model& model) {
    const auto used = static_cast<std::size_t>(bits.size());
    std::vector<unsigned char> actual(used + 3, 0xEE);
    ASSERT_EQ(bits.getBytes(actual.data(), static_cast<int>(actual.size())), 0);
    ASSERT_EQ(tests::toHex(actual), tests::toHex(model.octets(actual.size())));
    unsigned int cardinality = 0;
    for (unsigned int i = 0; i < used * 8; ++i) {
        cardinality += model.has(i) ? 1u : 0u;
    }
    ASSERT_EQ(bits.cardinality(), cardinality);
    ASSERT_GE(bits.length(), model.length());
    ASSERT_LE(model.length(), used * 8);
}

/// Runs one random operation on both.
void step(Bits& bits, Model& model, unsigned int limit, std::mt19937& random) {
    const unsigned int reach = limit != 0 ? limit : 150;
    const auto below = [&](unsigned int end) { return static_cast<unsigned int>(random() % end); };
    unsigned int from = below(reach + 1);
    unsigned int to = below(reach + 1);
    if (from > to) {
        std::swap(from, to);
    }
    const unsigned int bit = below(reach);
    const unsigned int otherBits = 1 + below(reach + 20);
    std::vector<unsigned char> other((otherBits + 7) / 8);
    std::generate(other.begin(), other.end(), [&] { return static_cast<unsigned char>(random()); });
    const unsigned int wholeOctets = static_cast<unsigned int>(other.size()) * 8;
    const unsigned int taken = limit != 0 ? std::min(limit, otherBits) : otherBits;
    const auto inOther = [&](unsigned int i) {
        return i < wholeOctets && (other[i / 8] & (0x80 >> i % 8)) != 0;
    };
    const auto inRange = [&](unsigned int i) { return i >= from && i < to; };
    const unsigned int all = std::max(model.length(), reach) + 40;

    switch (below(15)) {
    case 0:
        ASSERT_EQ(bits.set(bit), 0);
        model.put(bit, true);
        break;
    case 1:
        ASSERT_EQ(bits.clear(bit), 0);
        model.put(bit, false);
        break;
    case 2:
        ASSERT_EQ(bits.invert(bit), 0);
        model.put(bit, !model.has(bit));
        break;
    case 3:
        ASSERT_EQ(bits.set(from, to), 0);
        model.each(all, [&](const Model& m, unsigned int i) { return m.has(i) || inRange(i); });
        break;
    case 4:
        ASSERT_EQ(bits.clear(from, to), 0);
        model.each(all, [&](const Model& m, unsigned int i) { return m.has(i) && !inRange(i); });
        break;
    case 5:
        ASSERT_EQ(bits.invert(from, to), 0);
        model.each(all, [&](const Model& m, unsigned int i) { return m.has(i) != inRange(i); });
        break;
    case 6:
        ASSERT_EQ(bits.doAnd(other.data(), otherBits), 0);
        model.each(all, [&](const Model& m, unsigned int i) { return m.has(i) && inOther(i); });
        break;
    case 7:
        ASSERT_EQ(bits.doAndNot(other.data(), otherBits), 0);
        model.each(all, [&](const Model& m, unsigned int i) { return m.has(i) && !inOther(i); });
        break;
    case 8:
        ASSERT_EQ(bits.doOr(other.data(), otherBits), 0);
        model.each(all, [&](const Model& m, unsigned int i) {
            return m.has(i) || (i < taken && inOther(i));
        });
        break;
    case 9:
        ASSERT_EQ(bits.doXor(other.data(), otherBits), 0);
        model.each(all, [&](const Model& m, unsigned int i) {
            return m.has(i) != (i < taken && inOther(i));
        });
        break;
    case 10:
        ASSERT_EQ(bits.shiftLeft(bit), 0);
        model.each(all, [&](const Model& m, unsigned int i) { return m.has(i + bit); });
        break;
    case 11: {
        const unsigned int length = bits.length();
        const unsigned int moved = limit == 0 ? length : length - bit;
        if (length != 0 && (limit == 0 || length > bit) &&
            (moved % 8 == 7 || (moved % 8 == 0 && bit % 8 == 0))) {
            break; // the two families with a result of their own
        }
        const auto octets = static_cast<unsigned int>(bits.size());
        ASSERT_EQ(bits.shiftRight(bit), 0);
        model.each(all + bit, [&](const Model& m, unsigned int i) {
            // A fixed size keeps its length, but bits that leave it may show in its last octet, and
            // the limit masks the last octet wherever that stands.
            if (limit != 0 && (bit >= length || i >= (length + 7) / 8 * 8 ||
                               (limit % 8 != 0 && i / 8 + 1 == octets && i % 8 >= limit % 8))) {
                return false;
            }
            return limit != 0 && i >= length ? bits.get(i) != 0 : i >= bit && m.has(i - bit);
        });
        break;
    }
    case 12: {
        std::vector<unsigned char> out((to - from + 7) / 8 + below(2), 0xEE);
        ASSERT_EQ(bits.get(from, to, out.data(), static_cast<int>(out.size())), 0);
        for (unsigned int i = 0; i < out.size() * 8; ++i) {
            ASSERT_EQ((out[i / 8] & (0x80 >> i % 8)) != 0, i < to - from && model.has(from + i));
        }
        break;
    }
    case 13:
        ASSERT_EQ(bits.get(bit), model.has(bit) ? 1 : 0);
        break;
    default:
        if (below(20) == 0) {
            ASSERT_EQ(bits.clear(), 0);
            model = Model(limit);
        }
        break;
    }
    ASSERT_EQ(bits.recorded(), 0);
    expectSame(bits, model);
}

TEST(BitSet, behavesLikeTheModelInEveryForm) {
    const auto run = [](Bits& bits, unsigned int limit, unsigned int seed, const char* form) {
        std::mt19937 random(seed);
        Model model(limit);
        for (int i = 0; i < 2000; ++i) {
            step(bits, model, limit, random);
            if (testing::Test::HasFatalFailure()) {
                FAIL() << form << ' ' << limit << " at step " << i;
            }
        }
    };
    {
        Holder holder;
        run(holder.growable, 0, 1, "growable");
        Bits copy(holder.growable);
        EXPECT_EQ(copy.hex(), holder.growable.hex());
    }
    {
        // The octets are the caller's until the string outgrows them.
        const std::unique_ptr<unsigned char[]> octets(new unsigned char[1]());
        ASN1TDynBitStr record{8, octets.get()};
        Bits bits(record);
        run(bits, 0, 2, "record");
        EXPECT_EQ(record.numbits, bits.length());
    }
    for (unsigned int limit : {1u, 7u, 8u, 9u, 15u, 16u, 32u, 61u, 64u, 100u}) {
        ASN1BERDecodeBuffer buffer;
        Bits own(buffer, limit);
        run(own, limit, 3 + limit, "own, fixed");
        const std::unique_ptr<unsigned char[]> octets(new unsigned char[(limit + 7) / 8]);
        std::memset(octets.get(), 0xFF, (limit + 7) / 8);
        unsigned int count = 0;
        Bits bits(octets.get(), count, limit);
        run(bits, limit, 200 + limit, "caller's array");
        EXPECT_LE(count, limit);
    }
}

TEST(BitSet, singleResults) {
    using Operation = int (*)(Bits&);
    struct Row {
        const char* before;
        Operation operation;
        const char* after;
        unsigned int length;
    };
    const Row rows[] = {
        {"", [](Bits& b) { return b.set(3, 12); }, "1F F0", 12},
        {"", [](Bits& b) { return b.set(4, 5); }, "08", 5},
        {"", [](Bits& b) { return b.set(4, 8); }, "0F", 8},
        {"", [](Bits& b) { return b.set(0, 8); }, "FF", 8},
        {"ff ff", [](Bits& b) { return b.clear(8, 8); }, "FF FF", 16},
        {"80", [](Bits& b) { return b.set(0, 0); }, "80", 1},
        {"a5", [](Bits& b) { return b.invert(0, 8) + b.invert(0, 8); }, "A5", 8},
        {"01 01", [](Bits& b) { return b.clear(9, 300); }, "01", 8},
        {"1f f8", [](Bits& b) { return b.shiftLeft(3); }, "FF C0", 10},
        {"ff", [](Bits& b) { return b.shiftLeft(8); }, "", 0},
        {"ff", [](Bits& b) { return b.shiftLeft(0xFFFFFFFF); }, "", 0},
        {"ff", [](Bits& b) { return b.shiftRight(1); }, "7F 80", 9},
        {"fe", [](Bits& b) { return b.shiftRight(8); }, "", 0},
        {"ff ff", [](Bits& b) { return b.doXor(*b.pBits, 16); }, "", 0},
        {"ff 81", [](Bits& b) { return b.doXor(*b.pBits, 8); }, "00 81", 16},
        {"ff ff", [](Bits& b) { return b.doAndNot(*b.pBits, 16); }, "", 0},
        {"ff 01", [](Bits& b) { return b.doAnd(nullptr, 0); }, "", 0},
        {"81", [](Bits& b) { return b.doXor(nullptr, 0) + b.doAndNot(nullptr, 0); }, "81", 8},
    };
    for (const Row& row : rows) {
        GrowableBits holder(row.before);
        Bits& bits = holder.growable;
        EXPECT_EQ(row.operation(bits), 0) << row.before;
        EXPECT_EQ(bits.hex(), row.after) << row.before;
        EXPECT_EQ(bits.length(), row.length) << row.before;
        EXPECT_EQ(*bits.pNumBits, row.length) << row.before;
    }
}

TEST(BitSet, shiftRightInItsTwoFamilies) {
    struct Row {
        const char* before;
        unsigned int count;
        const char* after;
        const char* reason;
    };
    // What the octet-wise steps yield; worked out by hand.
    const Row rows[] = {
        {"ff", 8, "", "whole octets: the one octet is lost"},
        {"ff", 0, "", "even by nothing"},
        {"ff f1", 8, "00 F1", "whole octets: the first is lost"},
        {"aa fe", 1, "", "15 bits by one: nothing is left"},
        {"aa fe", 3, "58 C0", "15 bits into the next octet"},
        {"fe", 1, "", "7 bits within an octet: the bits fall off its top"},
        {"fe", 2, "80", "7 bits into the next octet: the last of them comes out first"},
    };
    for (const Row& row : rows) {
        GrowableBits holder(row.before);
        EXPECT_EQ(holder.growable.shiftRight(row.count), 0);
        EXPECT_EQ(holder.growable.hex(), row.after) << row.reason;
    }
    // No spare octet stands behind these octets: none may be read.
    const std::unique_ptr<unsigned char[]> octets(new unsigned char[1]{0xFE});
    unsigned int count = 7;
    Bits bits(octets.get(), count, 8);
    EXPECT_EQ(bits.shiftRight(0), 0);
    EXPECT_EQ(count, 0u);
}

TEST(BitSet, growsInStrides) {
    tests::CountingAllocator allocator;
    Holder holder;
    Bits& bits = holder.growable;
    EXPECT_EQ(bits.unitsAllocated, 0);
    const long calls = allocator.calls();
    EXPECT_EQ(bits.set(100), 0);
    EXPECT_EQ(bits.unitsUsed, 13);
    EXPECT_EQ(bits.unitsAllocated, 1037);
    EXPECT_EQ(bits.ownNumBits, 101u);
    for (unsigned int bit = 101; bit < 8 * 1037; ++bit) {
        bits.set(bit);
    }
    EXPECT_EQ(allocator.calls(), calls + 1);
    EXPECT_EQ(bits.cardinality(), 8u * 1037 - 100);
    EXPECT_EQ(bits.clear(101, 9000), 0);
    EXPECT_EQ(bits.clear(100), 0);
    EXPECT_EQ(bits.length(), 0u);
    EXPECT_EQ(bits.ownNumBits, 0u);
    // The string's own octets stay an argument while they move.
    EXPECT_EQ(bits.set(0, 16), 0);
    EXPECT_EQ(bits.doXor(*bits.pBits, 8 * 1037 + 1), 0);
    EXPECT_EQ(bits.length(), 0u);
}

TEST(BitSet, failuresAreRecordedAndChangeNothing) {
    using Operation = int (*)(Bits&);
    struct Row {
        const char* name;
        Operation operation;
        int status;
    };
    static unsigned char out[8];
    const Row rows[] = {
        {"bit at the limit", [](Bits& b) { return b.set(8); }, -5},
        {"bit above the limit", [](Bits& b) { return b.set(9); }, -29},
        {"clear above", [](Bits& b) { return b.clear(9); }, -29},
        {"invert at", [](Bits& b) { return b.invert(8); }, -5},
        {"invert above", [](Bits& b) { return b.invert(9); }, -29},
        {"range above", [](Bits& b) { return b.set(0, 9); }, -29},
        {"range start above", [](Bits& b) { return b.invert(9, 3); }, -29},
        {"range crossed", [](Bits& b) { return b.clear(4, 3); }, -24},
        {"get above", [](Bits& b) { return b.get(9, 9, out, 1); }, -29},
        {"get crossed", [](Bits& b) { return b.get(4, 3, out, 1); }, -24},
        {"get too small", [](Bits& b) { return b.get(0, 1, out, 0); }, -17},
        {"get of no size", [](Bits& b) { return b.get(0, 1, out, -1); }, -17},
        {"bytes too small", [](Bits& b) { return b.getBytes(out, 0); }, -5},
        {"and null", [](Bits& b) { return b.doAnd(nullptr, 1); }, -30},
        {"and itself", [](Bits& b) { return b.doAnd(*b.pBits, 1); }, -30},
        {"or null", [](Bits& b) { return b.doOr(nullptr, 1); }, -30},
        {"or itself", [](Bits& b) { return b.doOr(*b.pBits, 1); }, -30},
        {"xor null", [](Bits& b) { return b.doXor(nullptr, 1); }, -30},
        {"and not null", [](Bits& b) { return b.doAndNot(nullptr, 1); }, -30},
    };
    ASN1BERDecodeBuffer buffer;
    Bits bits(buffer, 8);
    bits.set(2);
    for (const Row& row : rows) {
        EXPECT_EQ(row.operation(bits), row.status) << row.name;
        EXPECT_EQ(bits.recorded(), row.status) << row.name;
        EXPECT_EQ(bits.hex(), "20") << row.name;
        bits.forget();
    }
    Holder holder;
    EXPECT_EQ(holder.growable.doOr(out, 0), ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(holder.growable.set(0xFFFFFFFF), ASN1S_OUT_OF_BOUNDS);
    EXPECT_EQ(holder.growable.invert(0xFFFFFFFF), ASN1S_OUT_OF_BOUNDS);
    holder.growable.set(0);
    EXPECT_EQ(holder.growable.shiftRight(0xFFFFFFFF), ASN1S_OUT_OF_BOUNDS);
    EXPECT_EQ(holder.growable.hex(), "80");
    Bits unbound;
    EXPECT_EQ(unbound.set(0), ASN1S_INVALID_LENGTH);
    EXPECT_EQ(unbound.set(1), ASN1S_OUT_OF_BOUNDS);
}

TEST(BitSet, limitIsNoMultipleOfEight) {
    ASN1BERDecodeBuffer buffer;
    Bits bits(buffer, 10);
    EXPECT_EQ(bits.doOr(nullptr, 0), 0);
    EXPECT_EQ(bits.hex(), "FF C0");
    EXPECT_EQ(bits.ownNumBits, 10u);
    EXPECT_EQ(bits.shiftRight(2), 0);
    EXPECT_EQ(bits.hex(), "3F C0");
    EXPECT_EQ(bits.shiftRight(10), 0);
    EXPECT_EQ(bits.hex(), "");
    EXPECT_EQ(bits.set(0, 8), 0);
    EXPECT_EQ(bits.shiftRight(2), 0);
    EXPECT_EQ(bits.hex(), "") << "the limit masks the last octet in use, be it the first";
    EXPECT_EQ(bits.set(10), 0) << "the bit at the limit passes where there is an octet for it";
    EXPECT_EQ(bits.ownNumBits, 11u);
}

TEST(BitSet, takesOverACallersOctets) {
    {
        unsigned char octets[4] = {0xFF, 0xFF, 0xFF, 0xFF};
        unsigned int count = 11;
        Bits bits(octets, count, 20);
        EXPECT_EQ(tests::toHex(octets, 4), "FF E0 00 FF");
        EXPECT_EQ(bits.unitsUsed, 2);
        count = 11;
    }
    {
        unsigned char octets[1] = {0xFF};
        unsigned int count = 9;
        Bits bits(octets, count, 5);
        EXPECT_EQ(count, 5u) << "cut down to the limit";
        EXPECT_EQ(octets[0], 0xF8);
        EXPECT_EQ(bits.unusedBitsInLastUnit(), 3);
    }
    {
        unsigned char octets[1] = {0xFF};
        ASN1TDynBitStr record{3, octets};
        Bits bits(record);
        EXPECT_EQ(octets[0], 0xFE) << "the lowest bit alone";
        EXPECT_EQ(bits.length(), 7u);
    }
    {
        unsigned char octets[2] = {0xFF, 0xFF};
        unsigned int count = 3;
        Bits bits;
        bits.init(octets, count, 10);
        EXPECT_EQ(bits.unitsUsed, 1);
        EXPECT_EQ(bits.unitsAllocated, 2);
        EXPECT_EQ(tests::toHex(octets, 2), "FF FF") << "nothing is cleared";
        EXPECT_EQ(bits.set(16), ASN1S_OUT_OF_BOUNDS);
        ASN1TDynBitStr record{16, octets};
        bits.init(record);
        EXPECT_EQ(bits.length(), 16u);
    }
    for (unsigned int count : {0u, 0xFFFFFFFFu}) {
        ASN1TDynBitStr record{count, nullptr};
        Bits bits(record);
        EXPECT_EQ(bits.size(), 0);
        EXPECT_EQ(bits.set(1), 0);
        EXPECT_EQ(record.data[0], 0x40);
    }
}

TEST(BitSet, leavesNoDanglingRecord) {
    tests::CountingAllocator allocator;
    {
        ASN1BERDecodeBuffer buffer;
        const long live = allocator.live();
        unsigned char octets[1] = {0x80};
        ASN1TDynBitStr filled{1, octets};
        ASN1TDynBitStr empty{0, nullptr};
        {
            Bits grown(buffer, filled);
            EXPECT_EQ(grown.set(20), 0);
            EXPECT_EQ(filled.data[0], 0x80);
            EXPECT_EQ(filled.numbits, 21u);
            EXPECT_EQ(octets[0], 0x80);
            Bits fromNothing(buffer, empty);
            EXPECT_EQ(fromNothing.set(3), 0);
        }
        EXPECT_EQ(filled.numbits, 0u);
        EXPECT_EQ(filled.data, nullptr);
        EXPECT_EQ(empty.numbits, 4u) << "its block stays on the heap";
        EXPECT_EQ(empty.data[0], 0x10);
        EXPECT_EQ(allocator.live(), live + 1);
    }
    EXPECT_EQ(allocator.live(), 0);
}

TEST(BitSet, copiesAndRecords) {
    tests::CountingAllocator allocator;
    ASN1BERDecodeBuffer buffer;
    ASN1BERDecodeBuffer elsewhere;
    Bits fixed(buffer, 12);
    fixed.set(0, 9);
    const Bits same(fixed);
    EXPECT_EQ(same.hex(), "FF 80");
    EXPECT_NE(*same.pBits, *fixed.pBits);
    EXPECT_EQ(same.maxNumBits, 12u);
    EXPECT_EQ(same.unitsAllocated, 2);
    EXPECT_EQ(same.getMsgBuf(), &buffer);
    EXPECT_EQ(same.getCtxtPtr(), fixed.getCtxtPtr());
    Bits wider(fixed, 1);
    EXPECT_EQ(wider.unitsAllocated, 2 + 1024);
    EXPECT_EQ(wider.set(12), 0);
    EXPECT_EQ(wider.hex(), "FF 88");
    EXPECT_EQ(fixed.hex(), "FF 80");
    EXPECT_EQ(Bits(elsewhere, fixed).getCtxtPtr(), elsewhere.getCtxtPtr());
    EXPECT_EQ(Bits(Bits(buffer, 0u)).size(), 0);

    const ASN1TDynBitStr shared = fixed;
    EXPECT_EQ(shared.data, *fixed.pBits);
    EXPECT_EQ(shared.numbits, 9u);
    const ASN1TDynBitStr* record = fixed;
    EXPECT_NE(record->data, *fixed.pBits);
    EXPECT_EQ(record->numbits, 9u);
    EXPECT_EQ(tests::toHex(record->data, 2), "FF 80");

    const long live = allocator.live();
    for (long calls : {0L, 1L}) {
        allocator.failAfter(calls);
        const ASN1TDynBitStr* none = fixed;
        EXPECT_EQ(none, nullptr);
        EXPECT_EQ(fixed.recorded(), ASN1S_NO_MEMORY);
        fixed.forget();
    }
    EXPECT_EQ(allocator.live(), live);
}

TEST(BitSet, staysAsItWasWhenMemoryIsOut) {
    tests::CountingAllocator allocator;
    using Operation = int (*)(Bits&);
    static const unsigned char ones[2048] = {0xFF};
    const Operation operations[] = {
        [](Bits& b) { return b.set(9000); },        [](Bits& b) { return b.set(0, 9000); },
        [](Bits& b) { return b.invert(9000); },     [](Bits& b) { return b.invert(0, 9000); },
        [](Bits& b) { return b.doOr(ones, 9000); }, [](Bits& b) { return b.doXor(ones, 9000); },
        [](Bits& b) { return b.shiftRight(9000); },
    };
    unsigned char octets[1] = {0x40};
    ASN1BERDecodeBuffer buffer;
    ASN1TDynBitStr record{2, octets};
    Bits inRecord(buffer, record);
    Bits own(buffer, 0u);
    own.set(1);
    for (Bits* bits : {&inRecord, &own}) {
        for (Operation operation : operations) {
            const int allocated = bits->unitsAllocated;
            allocator.failAfter(0);
            EXPECT_EQ(operation(*bits), ASN1S_NO_MEMORY);
            EXPECT_EQ(bits->recorded(), ASN1S_NO_MEMORY);
            EXPECT_EQ(bits->hex(), "40");
            EXPECT_EQ(bits->unitsAllocated, allocated);
            EXPECT_EQ(*bits->pNumBits, 2u);
            bits->forget();
            allocator.neverFail();
        }
    }
    allocator.failAfter(0);
    Bits fixed(buffer, 8);
    EXPECT_EQ(fixed.recorded(), ASN1S_NO_MEMORY);
    EXPECT_EQ(fixed.set(0), ASN1S_INVALID_LENGTH);
    Bits copy(own);
    EXPECT_EQ(copy.length(), 0u);
    allocator.neverFail();
    EXPECT_EQ(copy.set(5), 0);
    EXPECT_EQ(copy.hex(), "04");
}

} // namespace

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/runtime/bit_set.h>

#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/hex.h"
#include "support/leak_check.h"

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

/// A string of at most so many bits (0: it grows) with the given octets, the last of them not zero.
struct Filled {
    explicit Filled(unsigned int limit = 0, const std::string& hex = "") : bits(buffer, limit) {
        if (const tests::Octets octets = tests::fromHex(hex); !octets.empty()) {
            bits.doXor(octets.data(), static_cast<unsigned int>(octets.size()) * 8);
        }
    }
    ASN1BERDecodeBuffer buffer;
    Bits bits;
};

const unsigned char ones[2048] = {0xFF};

/// Runs an operation that is told as text: its name and its numbers. Its operand, if any, stands
/// for the octets of the string itself, some ones, others that the caller gives, or none.
int run(Bits& bits, const std::string& operation, const unsigned char* other = nullptr) {
    static unsigned char out[8];
    std::istringstream words(operation);
    std::string name;
    words >> name;
    const std::map<std::string, const unsigned char*> operands = {
        {"own", *bits.pBits}, {"ones", ones}, {"other", other}, {"null", nullptr}};
    const unsigned char* operand = nullptr;
    std::vector<long long> numbers;
    for (std::string word; words >> word;) {
        if (const auto known = operands.find(word); known != operands.end()) {
            operand = known->second;
        } else {
            numbers.push_back(std::stoll(word, nullptr, 0));
        }
    }
    const auto number = [&](std::size_t i) { return static_cast<unsigned int>(numbers.at(i)); };
    const bool range = numbers.size() == 2;
    const std::map<std::string, std::function<int()>> operations = {
        {"set", [&] { return range ? bits.set(number(0), number(1)) : bits.set(number(0)); }},
        {"clear", [&] { return range ? bits.clear(number(0), number(1)) : bits.clear(number(0)); }},
        {"invert",
         [&] { return range ? bits.invert(number(0), number(1)) : bits.invert(number(0)); }},
        {"get", [&] { return bits.get(number(0), number(1), out, static_cast<int>(numbers[2])); }},
        {"getBytes", [&] { return bits.getBytes(out, static_cast<int>(numbers[0])); }},
        {"shiftLeft", [&] { return bits.shiftLeft(number(0)); }},
        {"shiftRight", [&] { return bits.shiftRight(number(0)); }},
        {"and", [&] { return bits.doAnd(operand, number(0)); }},
        {"or", [&] { return bits.doOr(operand, number(0)); }},
        {"xor", [&] { return bits.doXor(operand, number(0)); }},
        {"andNot", [&] { return bits.doAndNot(operand, number(0)); }},
    };
    return operations.at(name)();
}

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
    explicit Model(unsigned int limit) : limit_(limit) {}

    bool has(unsigned int bit) const { return bits_.count(bit) != 0; }
    unsigned int length() const { return bits_.empty() ? 0 : *bits_.rbegin() + 1; }
    /// Replaces each bit below @p end by what @p value says of it and of whether it was set.
    void each(unsigned int end, const std::function<bool(bool, unsigned int)>& value) {
        for (unsigned int i = 0; i < end; ++i) {
            if (!value(has(i), i)) {
                bits_.erase(i);
            } else if (limit_ == 0 || i < limit_) {
                bits_.insert(i);
            }
        }
    }
    /// The first bits, and those beyond as zeros.
    std::vector<unsigned char> octets(std::size_t count) const {
        std::vector<unsigned char> octets(count);
        for (const unsigned int bit : bits_) {
            octets.at(bit / 8) |= static_cast<unsigned char>(0x80 >> bit % 8);
        }
        return octets;
    }

private:
    unsigned int limit_;
    std::set<unsigned int> bits_;
};

void expectSame(const Bits& bits, const Model& model) {
    const auto used = static_cast<std::size_t>(bits.size());
    std::vector<unsigned char> actual(used + 3, 0xEE);
    ASSERT_EQ(bits.getBytes(actual.data(), static_cast<int>(actual.size())), 0);
    ASSERT_EQ(tests::toHex(actual), tests::toHex(model.octets(actual.size())));
    unsigned int cardinality = 0;
    for (unsigned int i = 0; i < used * 8; ++i) {
        ASSERT_EQ(bits.get(i), model.has(i) ? 1 : 0);
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

    const Model before = model;
    const std::string one = std::to_string(bit);
    const std::string range = std::to_string(from) + " " + std::to_string(to);
    const std::string operand = "other " + std::to_string(otherBits);

    // What each operation makes of bit i.
    const std::pair<std::string, std::function<bool(bool, unsigned int)>> operations[] = {
        {"set " + one, [&](bool had, auto i) { return had || i == bit; }},
        {"clear " + one, [&](bool had, auto i) { return had && i != bit; }},
        {"invert " + one, [&](bool had, auto i) { return had != (i == bit); }},
        {"set " + range, [&](bool had, auto i) { return had || inRange(i); }},
        {"clear " + range, [&](bool had, auto i) { return had && !inRange(i); }},
        {"invert " + range, [&](bool had, auto i) { return had != inRange(i); }},
        {"and " + operand, [&](bool had, auto i) { return had && inOther(i); }},
        {"andNot " + operand, [&](bool had, auto i) { return had && !inOther(i); }},
        {"or " + operand, [&](bool had, auto i) { return had || (i < taken && inOther(i)); }},
        {"xor " + operand, [&](bool had, auto i) { return had != (i < taken && inOther(i)); }},
        {"shiftLeft " + one, [&](bool, auto i) { return before.has(i + bit); }},
    };
    const unsigned int choice = below(14);
    if (choice < std::size(operations)) {
        ASSERT_EQ(run(bits, operations[choice].first, other.data()), 0);
        model.each(all, operations[choice].second);
    }
    switch (choice) {
    case 11: {
        const unsigned int length = bits.length();
        const unsigned int moved = limit == 0 ? length : length - bit;
        if (length != 0 && (limit == 0 || length > bit) &&
            (moved % 8 == 7 || (moved % 8 == 0 && bit % 8 == 0))) {
            break; // the two families with a result of their own
        }
        const auto octets = static_cast<unsigned int>(bits.size());
        ASSERT_EQ(bits.shiftRight(bit), 0);
        model.each(all + bit, [&](bool, unsigned int i) {
            // A fixed size keeps its length, but bits that leave it may show in its last octet, and
            // the limit masks the last octet wherever that stands.
            if (limit != 0 && (bit >= length || i >= (length + 7) / 8 * 8 ||
                               (limit % 8 != 0 && i / 8 + 1 == octets && i % 8 >= limit % 8))) {
                return false;
            }
            return limit != 0 && i >= length ? bits.get(i) != 0 : i >= bit && before.has(i - bit);
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
        if (below(20) == 0) {
            ASSERT_EQ(bits.clear(), 0);
            model = Model(limit);
        }
        break;
    default:
        break;
    }
    ASSERT_EQ(bits.recorded(), 0);
    expectSame(bits, model);
}

TEST(BitSet, behavesLikeTheModelInEveryForm) {
    const auto compare = [](Bits& bits, unsigned int limit, unsigned int seed, const char* form) {
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
        Filled own;
        compare(own.bits, 0, 1, "growable");
        EXPECT_EQ(Bits(own.bits).hex(), own.bits.hex());
    }
    {
        // The octets are the caller's until the string outgrows them.
        const std::unique_ptr<unsigned char[]> octets(new unsigned char[1]());
        ASN1TDynBitStr record{8, octets.get()};
        Bits bits(record);
        compare(bits, 0, 2, "record");
        EXPECT_EQ(record.numbits, bits.length());
    }
    for (unsigned int limit : {1u, 7u, 8u, 9u, 15u, 16u, 32u, 61u, 64u, 100u}) {
        Filled own(limit);
        compare(own.bits, limit, 3 + limit, "own, fixed");
        const std::unique_ptr<unsigned char[]> octets(new unsigned char[(limit + 7) / 8]);
        std::memset(octets.get(), 0xFF, (limit + 7) / 8);
        unsigned int count = 0;
        Bits bits(octets.get(), count, limit);
        compare(bits, limit, 200 + limit, "caller's array");
        EXPECT_LE(count, limit);
    }
}

TEST(BitSet, singleResults) {
    for (const char* table : {"results", "results within ten bits", "failures"}) {
        tests::forEachRow("bit_set.txt", table, [&](const tests::DataRow& row) {
            const int status = row.has("status") ? row.number("status") : 0;
            Filled string(row.has("limit") ? row.number<unsigned int>("limit") : 0, row["before"]);
            EXPECT_EQ(run(string.bits, row["operation"]), status);
            EXPECT_EQ(string.bits.recorded(), status);
            EXPECT_EQ(string.bits.hex(), row[row.has("after") ? "after" : "before"]);
            if (row.has("length")) {
                EXPECT_EQ(string.bits.length(), row.number<unsigned int>("length"));
                EXPECT_EQ(*string.bits.pNumBits, row.number<unsigned int>("length"));
            }
        });
    }
    // No spare octet stands behind these octets: none may be read.
    const std::unique_ptr<unsigned char[]> octets(new unsigned char[1]{0xFE});
    unsigned int count = 7;
    Bits bits(octets.get(), count, 8);
    EXPECT_EQ(bits.shiftRight(0), 0);
    EXPECT_EQ(count, 0u);
    Bits unbound;
    EXPECT_EQ(unbound.set(0), ASN1S_INVALID_LENGTH);
    EXPECT_EQ(unbound.set(1), ASN1S_OUT_OF_BOUNDS);
}

TEST(BitSet, growsInStrides) {
    tests::CountingAllocator allocator;
    ASN1BERDecodeBuffer buffer;
    Bits bits(buffer, 0u);
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

TEST(BitSet, takesOverACallersOctets) {
    tests::forEachRow("bit_set.txt", "caller's octets", [&](const tests::DataRow& row) {
        tests::Octets octets = tests::fromHex(row["octets"]);
        unsigned int count = row.number<unsigned int>("count");
        const Bits bits(octets.data(), count, row.number<unsigned int>("limit"));
        EXPECT_EQ(tests::toHex(octets), row["after"]);
        EXPECT_EQ(count, row.number<unsigned int>("taken"));
        EXPECT_EQ(bits.unitsUsed, row.number("units"));
        EXPECT_EQ(bits.unusedBitsInLastUnit(), row.number("unused"));
    });
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
    const tests::LeakCheck allocator;
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
    const char* operations[] = {"set 9000",     "set 0 9000",    "invert 9000",    "invert 0 9000",
                                "or ones 9000", "xor ones 9000", "shiftRight 9000"};
    unsigned char octets[1] = {0x40};
    ASN1BERDecodeBuffer buffer;
    ASN1TDynBitStr record{2, octets};
    Bits inRecord(buffer, record);
    Bits own(buffer, 0u);
    own.set(1);
    for (Bits* bits : {&inRecord, &own}) {
        for (const char* operation : operations) {
            const int allocated = bits->unitsAllocated;
            allocator.failAfter(0);
            EXPECT_EQ(run(*bits, operation), ASN1S_NO_MEMORY);
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

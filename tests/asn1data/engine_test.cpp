#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <shapes/shapes.h>

#include "shapes_types.h"
#include "support/coded_row.h"
#include "support/counting_allocator.h"
#include "support/shapes_catalogue.h"

// The rules of the type family on a module that holds each shape once: octets in, status, octets
// out.

namespace {

using namespace asn1data;
using namespace shapes;
using tests::DataRow;
using tests::fromHex;
using tests::Octets;
using tests::toHex;

const TypeDescription& typeOf(const DataRow& row) {
    const TypeDescription* type = shapes::findType(row.text("type"));
    return type != nullptr ? *type : throw std::runtime_error("no type " + row["type"]);
}

TEST(Engine, DecodesThenEncodes) {
    tests::forEachRow("engine.txt", "messages", [&](const DataRow& row) {
        tests::expectCoded(row, typeOf(row), fromHex(row["message"]));
        tests::expectCoded(row, typeOf(row), fromHex(row["message"]), ASN1F_NO_COPY);
    });
}

/// A message of the given depth: each level inside the one before.
Octets nested(int depth, const std::string& innermost, const std::string& around) {
    Octets message = fromHex(innermost);
    const Octets prefix = fromHex(around);
    for (int i = 0; i < depth; ++i) {
        Octets outer = prefix;
        // Lengths up to a few thousand: always the form with two length octets.
        outer.insert(outer.end(), message.begin(), message.end());
        const auto size = outer.size();
        const unsigned char header[] = {0x30, 0x82, static_cast<unsigned char>(size >> 8),
                                        static_cast<unsigned char>(size & 0xFF)};
        outer.insert(outer.begin(), std::begin(header), std::end(header));
        message = outer;
    }
    return message;
}

TEST(EngineNesting, OpenValuesInsideEachOtherEndAtTheLimit) {
    for (const auto& [depth, status] : {std::pair{63, 0}, {64, 0}, {65, -12}, {2000, -12}}) {
        // Kind 1.2.3.6 holds a value of its own type; the innermost kind is unknown.
        const Octets message = nested(depth, "30 07 06 03 2A 03 63 05 00", "06 03 2A 03 06");
        tests::Reader reader(message);
        ASN1T_Open value;
        ASSERT_EQ(xd_setp(reader, reader->buffer.data, static_cast<int>(message.size()), nullptr,
                          nullptr),
                  0);
        EXPECT_EQ(asn1D_Open(reader, &value, ASN1TagExplicit, 0), status) << depth;
        EXPECT_EQ(reader->nestingDepth, 0);
        if (status == 0) {
            tests::Context copies;
            ASN1T_Open copied;
            asn1Copy_Open(copies, &value, &copied);
            EXPECT_EQ(copies->errInfo.status, 0);
            EXPECT_EQ(xe_setp(copies, nullptr, 0), 0);
            EXPECT_GT(asn1E_Open(copies, &copied, ASN1TagExplicit), 0);
            asn1Free_Open(copies, &copied);
        }
        asn1Free_Open(reader, &value);
    }
}

TEST(EngineNesting, ValuesThatContainTheirOwnTypeAreLimitedBothWays) {
    // A chain made by hand may be longer than any decoder would make it, even endless.
    tests::Writer writer;
    ASN1T_Chain endless;
    endless.t = 2;
    endless.u.next = &endless;
    EXPECT_EQ(asn1E_Chain(writer, &endless, ASN1TagExplicit), ASN1S_NO_MEMORY);
    ASN1T_Chain copied;
    asn1Copy_Chain(writer, &endless, &copied);
    EXPECT_EQ(writer.recorded(), ASN1S_NO_MEMORY);
    EXPECT_EQ(writer->nestingDepth, 0);
    endless.t = 0;
}

/// Encodes a value that @p change made of a fresh one.
template <class Value>
void expectEncode(const char* what, int status, int (*encode)(ASN1CTXT*, Value*, ASN1TagType),
                  void (*change)(Value&)) {
    SCOPED_TRACE(what);
    tests::Writer writer;
    Value value{};
    change(value);
    EXPECT_EQ(encode(writer, &value, ASN1TagExplicit), status);
    EXPECT_EQ(writer.recorded(), status);
}

TEST(EngineEncoding, RefusesWhatCannotBe) {
    expectEncode<ASN1T_Choice>("selector 0", ASN1S_INVALID_CHOICE, asn1E_Choice, [](auto&) {});
    expectEncode<ASN1T_Choice>("selector past the last alternative", ASN1S_INVALID_CHOICE,
                               asn1E_Choice, [](auto& value) { value.t = 99; });
    expectEncode<ASN1T_Choice>("selected pointer null", ASN1S_BAD_VALUE, asn1E_Choice,
                               [](auto& value) { value.t = 10; });
    expectEncode<ASN1T_Utf8>("text null", ASN1S_BAD_VALUE, asn1E_Utf8, [](auto&) {});
    expectEncode<ASN1T_ShortUtf8>("constrained text null", ASN1S_BAD_VALUE, asn1E_ShortUtf8,
                                  [](auto&) {});
    expectEncode<ASN1T_Inner>("identifier without arcs", ASN1S_INVALID_OBJID, asn1E_Inner,
                              [](auto&) {});
    expectEncode<ASN1T_UncopiedOctets>("more octets claimed than the record holds",
                                       ASN1S_CONSTRAINT_VIOLATION, asn1E_UncopiedOctets,
                                       [](auto& value) { value.numocts = 3; });
    expectEncode<ASN1T_NineBits>("more bits claimed than the record holds", ASN1S_STRING_OVERFLOW,
                                 asn1E_NineBits, [](auto& value) { value.numbits = 17; });
    expectEncode<ASN1T_FixedNumbers>("more elements claimed than the record holds",
                                     ASN1S_EXTRA_ELEMENT, asn1E_FixedNumbers,
                                     [](auto& value) { value.n = 4; });
    expectEncode<ASN1T_NumberArray>("elements claimed but not there", ASN1S_BAD_VALUE,
                                    asn1E_NumberArray, [](auto& value) { value.n = 2; });
    expectEncode<ASN1T_Bits>("bits claimed but not there count as absent", 0, asn1E_Bits,
                             [](auto& value) { value.numbits = 5; });
    tests::Writer writer;
    EXPECT_EQ(asn1E_Inner(writer, nullptr, ASN1TagExplicit), ASN1S_BAD_VALUE);
}

/// A message with open values in every place, lists and texts: each kind of allocation.
const char* const richMessage =
    "30 2A 06 03 2A 03 06 30 23 06 03 2A 03 06 30 1C 06 03 2A 03 05 A9 15 02 01 05 06 10 "
    "2A 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11";

TEST(EngineMemory, EveryAllocationMayFail) {
    const std::pair<const TypeDescription&, const char*> messages[] = {
        {types::Open, richMessage},
        {types::OpenList, "30 0D 06 03 2A 03 02 31 06 0C 01 42 0C 01 41"},
        {types::Contained, "30 10 06 03 2A 03 01 04 09 30 07 02 02 00 05 06 01 2A"},
        {types::Optionals,
         "30 16 04 02 41 42 03 02 00 FF 0C 01 41 30 06 02 01 05 06 01 2A 01 01 FF"},
        {types::RecordSet, "31 10 30 06 02 01 02 06 01 2A 30 06 02 01 01 06 01 2A"},
        {types::TextArray, "30 06 0C 01 41 0C 01 42"},
        {types::Extended, "30 09 06 01 2A 05 00 30 02 05 00"},
    };
    for (const auto& [type, text] : messages) {
        SCOPED_TRACE(text);
        const Octets octets = fromHex(text);
        tests::CountingAllocator allocator;
        for (long allowed = 0;; ++allowed) {
            SCOPED_TRACE(allowed);
            tests::CountingAllocator::neverFail();
            const long before = tests::CountingAllocator::live();
            int status = 0;
            {
                tests::Reader reader(octets);
                tests::Context copies;
                void* value = family::newRecord(reader, type);
                void* copied = family::newRecord(copies, type);
                ASSERT_EQ(xd_setp(reader, reader->buffer.data, static_cast<int>(octets.size()),
                                  nullptr, nullptr),
                          0);
                tests::CountingAllocator::failAfter(allowed);
                status = family::decode(reader, type, value, ASN1TagExplicit, 0);
                if (status == 0) {
                    family::copy(copies, type, value, copied);
                    status = copies->errInfo.status;
                }
                if (status == 0) {
                    status = xe_setp(copies, nullptr, 0);
                }
                if (status == 0) {
                    const int count = family::encode(copies, type, copied, ASN1TagExplicit);
                    status = count > 0 ? 0 : count;
                }
                // Whatever was reached can be given back.
                family::release(copies, type, copied);
                family::release(reader, type, value);
            }
            EXPECT_EQ(tests::CountingAllocator::live(), before);
            if (status == 0) {
                EXPECT_GT(allowed, 2);
                break;
            }
            ASSERT_EQ(status, ASN1S_NO_MEMORY);
        }
    }
}

TEST(EngineMemory, AnArrayThatNoBlockCanHoldIsRefused) {
    // So many identifiers that the octets of their array are a small number in 32 bits.
    constexpr unsigned count = 0x100000000ULL / sizeof(ASN1TObjId) + 100;
    const Octets identifier = fromHex("06 01 2A");
    Octets message = fromHex("31 84");
    for (int shift = 24; shift >= 0; shift -= 8) {
        message.push_back(static_cast<unsigned char>(count * identifier.size() >> shift & 0xFF));
    }
    message.reserve(message.size() + count * identifier.size());
    for (unsigned i = 0; i < count; ++i) {
        message.insert(message.end(), identifier.begin(), identifier.end());
    }
    {
        tests::Context reader;
        ASSERT_EQ(
            xd_setp(reader, message.data(), static_cast<int>(message.size()), nullptr, nullptr), 0);
        ASN1T_OidArray value;
        EXPECT_EQ(asn1D_OidArray(reader, &value, ASN1TagExplicit, 0), ASN1S_NO_MEMORY);
        EXPECT_EQ(value.n, 0u);
        EXPECT_EQ(value.elem, nullptr);
    }
    WalkVisitor nobody;
    EXPECT_EQ(walk(types::OidArray, message.data(), message.size(), nobody).status,
              ASN1S_NO_MEMORY);

    // A record that claims as many. Not one of them is looked at.
    tests::Context copies;
    ASN1TObjId one;
    ASN1T_OidArray claimed;
    claimed.n = count;
    claimed.elem = &one;
    ASN1T_OidArray copied;
    asn1Copy_OidArray(copies, &claimed, &copied);
    EXPECT_EQ(copies->errInfo.status, ASN1S_NO_MEMORY);
    EXPECT_EQ(copied.n, 0u);
    EXPECT_EQ(copied.elem, nullptr);
}

TEST(EngineMutation, EveryOctetOfEveryRowMayBeAnything) {
    tests::forEachRow("engine.txt", "messages", [&](const DataRow& row) {
        const TypeDescription& type = typeOf(row);
        const Octets octets = fromHex(row["message"]);
        const auto attempt = [&](const Octets& message) {
            tests::DecodedValue value(type, message);
            EXPECT_LE(value.status(), 0);
            if (value.status() == 0) {
                value.encoded();
                tests::Context copies;
                void* copied = family::newRecord(copies, type);
                family::copy(copies, type, value.get(), copied);
                family::release(copies, type, copied);
            }
        };
        for (std::size_t i = 0; i < octets.size(); ++i) {
            // A size of 0 would state none at all.
            if (i != 0) {
                attempt(Octets(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(i)));
            }
            for (int octet = 0; octet < 256; ++octet) {
                Octets changed = octets;
                changed[i] = static_cast<unsigned char>(octet);
                attempt(changed);
            }
        }
    });
}

TEST(EngineOpenValue, TypedFormGoesOutAndTheRawOctetsStay) {
    ASN1T_Inner inner;
    inner.a = 5;
    const unsigned arcs[] = {1, 2, 3, 1};
    inner.b = ASN1TObjId(2, arcs);
    ASN1T_Open value;
    value.kind = ASN1TObjId(4, arcs);
    value.value.decoded = &inner;
    {
        tests::Writer writer;
        EXPECT_EQ(asn1E_Open(writer, &value, ASN1TagExplicit), 15);
        EXPECT_EQ(writer.hex(), "30 0D 06 03 2A 03 01 30 06 02 01 05 06 01 2A");
    }
    // Nothing in the value depends on a context that it was encoded with.
    EXPECT_EQ(value.value.data, nullptr);
    inner.a = 6;
    tests::Writer writer;
    EXPECT_EQ(asn1E_Open(writer, &value, ASN1TagExplicit), 15);
    EXPECT_EQ(writer.hex(), "30 0D 06 03 2A 03 01 30 06 02 01 06 06 01 2A");

    EXPECT_EQ(asn1ETC_Open(writer, &value), 0);
    ASSERT_EQ(value.value.numocts, 8u);
    EXPECT_EQ(toHex(value.value.data, 8), "30 06 02 01 06 06 01 2A");
    EXPECT_EQ(writer.hex(), "30 0D 06 03 2A 03 01 30 06 02 01 06 06 01 2A") << "left as found";
}

TEST(EngineList, AnIndefiniteScopeOfOneOctetIsEnded) {
    tests::Reader reader("02");
    ASN1T_NumberList list;
    EXPECT_EQ(asn1D_NumberList(reader, &list, ASN1TagImplicit, ASN1IndefiniteLength), 0);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(reader.position(), 0u);
}

TEST(EngineOpenValue, FailureLeavesTheContextOnTheInnerOctets) {
    const Octets octets = fromHex("30 08 06 03 2A 03 01 02 01 05");
    tests::Reader reader(octets);
    ASSERT_EQ(xd_setp(reader, reader->buffer.data, 10, nullptr, nullptr), 0);
    ASN1T_Open value;
    ASSERT_EQ(asn1D_Open(reader, &value, ASN1TagExplicit, 0), ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(reader->buffer.data, value.value.data);
    EXPECT_EQ(reader.position(), 0u);
    EXPECT_NE(value.value.decoded, nullptr);
    asn1Free_Open(reader, &value);
}

} // namespace

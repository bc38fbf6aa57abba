#include <compiler.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/asn1data/revocation_list.h>
#include <brevantis/asn1/runtime.h>
#include <brevantis/asn1/text/json_reader.h>
#include <brevantis/asn1/text/json_writer.h>
#include <brevantis/asn1/values.h>

#include "support/coding.h"
#include "support/loosened.h"
#include "support/value_round_trip.h"

// Work grows with the size of what is worked on, and not with its square. What is built for fuzzing
// calls a function at each comparison that it makes, at least one in each turn of a loop; these are
// counted, and with them the calls of the allocator and the octets that it is asked for. Twice the
// size may take 2.2 times as much.

namespace {

using namespace asn1data;
using tests::Octets;

struct Cost {
    unsigned long long comparisons = 0;
    unsigned long long calls = 0;
    unsigned long long octets = 0;
};

bool counting = false;
Cost cost;

inline void step() {
    cost.comparisons += counting ? 1 : 0;
}

} // namespace

// The functions that the compiler calls (SanitizerCoverage, "trace-cmp").
extern "C" {
void __sanitizer_cov_trace_cmp1(std::uint8_t, std::uint8_t);
void __sanitizer_cov_trace_cmp2(std::uint16_t, std::uint16_t);
void __sanitizer_cov_trace_cmp4(std::uint32_t, std::uint32_t);
void __sanitizer_cov_trace_cmp8(std::uint64_t, std::uint64_t);
void __sanitizer_cov_trace_const_cmp1(std::uint8_t, std::uint8_t);
void __sanitizer_cov_trace_const_cmp2(std::uint16_t, std::uint16_t);
void __sanitizer_cov_trace_const_cmp4(std::uint32_t, std::uint32_t);
void __sanitizer_cov_trace_const_cmp8(std::uint64_t, std::uint64_t);
void __sanitizer_cov_trace_switch(std::uint64_t, std::uint64_t*);

void __sanitizer_cov_trace_cmp1(std::uint8_t, std::uint8_t) {
    step();
}
void __sanitizer_cov_trace_cmp2(std::uint16_t, std::uint16_t) {
    step();
}
void __sanitizer_cov_trace_cmp4(std::uint32_t, std::uint32_t) {
    step();
}
void __sanitizer_cov_trace_cmp8(std::uint64_t, std::uint64_t) {
    step();
}
void __sanitizer_cov_trace_const_cmp1(std::uint8_t, std::uint8_t) {
    step();
}
void __sanitizer_cov_trace_const_cmp2(std::uint16_t, std::uint16_t) {
    step();
}
void __sanitizer_cov_trace_const_cmp4(std::uint32_t, std::uint32_t) {
    step();
}
void __sanitizer_cov_trace_const_cmp8(std::uint64_t, std::uint64_t) {
    step();
}
void __sanitizer_cov_trace_switch(std::uint64_t, std::uint64_t*) {
    step();
}
}

namespace {

void* countedAllocate(void* /*userData*/, std::size_t size) {
    cost.calls += counting ? 1 : 0;
    cost.octets += counting ? size : 0;
    return std::malloc(size);
}

/// Runs an operation and counts.
Cost costOf(const std::function<void()>& operation) {
    cost = {};
    counting = true;
    operation();
    counting = false;
    return cost;
}

/// Something that is done to an input of some size.
using Road = std::function<std::function<void()>(std::size_t)>;

constexpr double MostGrowth = 2.2;

/// @param smallest size; twice and four times that are tried too
void expectLinear(const std::string& name, std::size_t smallest, const Road& road) {
    SCOPED_TRACE(name);
    Cost costs[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const std::function<void()> operation = road(smallest << i);
        operation(); // what is made once
        costs[i] = costOf(operation);
    }
    std::printf("%-44s %6zu: %9llu %9llu %9llu steps, %6llu %6llu %6llu calls, %8llu %8llu %8llu "
                "octets\n",
                name.c_str(), smallest, costs[0].comparisons, costs[1].comparisons,
                costs[2].comparisons, costs[0].calls, costs[1].calls, costs[2].calls,
                costs[0].octets, costs[1].octets, costs[2].octets);
    const auto expectGrowth = [](unsigned long long before, unsigned long long after) {
        EXPECT_LE(static_cast<double>(after), MostGrowth * static_cast<double>(before));
    };
    EXPECT_GT(costs[0].comparisons, 20u) << "not counted";
    for (int i = 0; i < 2; ++i) {
        expectGrowth(costs[i].comparisons, costs[i + 1].comparisons);
        // Chunks come in sizes, so that few of them are no measure.
        expectGrowth(costs[i].calls + 8, costs[i + 1].calls);
        expectGrowth(costs[i].octets + 65536, costs[i + 1].octets);
    }
}

/// @p count times the same octets.
Octets repeated(std::size_t count, const Octets& octets) {
    Octets result;
    for (std::size_t i = 0; i < count; ++i) {
        tests::append(result, octets);
    }
    return result;
}

/// An element of any size, its length in four octets.
Octets element(unsigned char identifier, const Octets& contents) {
    Octets result = {identifier, 0x84};
    for (unsigned shift = 32; shift != 0;) {
        shift -= 8;
        result.push_back(static_cast<unsigned char>(contents.size() >> shift));
    }
    tests::append(result, contents);
    return result;
}

Octets joined(Octets first, const Octets& second) {
    tests::append(first, second);
    return first;
}

/// A decoded message on a heap of its own.
struct Decoded {
    Decoded(const TypeDescription& decodedType, const Octets& message, int flags = 0)
        : reader(message), type(decodedType), value(family::newRecord(reader, type)) {
        rtCtxtSetFlag(reader, flags);
        unsigned char* const octets = reader->buffer.data;
        xd_setp(reader, octets, static_cast<int>(message.size()), nullptr, nullptr);
        status = family::decode(reader, type, value, ASN1TagExplicit, 0);
    }
    tests::Reader reader;
    const TypeDescription& type;
    void* value;
    int status;
};

/// Messages of a type at all that can be done with them.
/// @param message of a size
void expectMessagesLinear(const char* typeName, const std::string& what, std::size_t smallest,
                          const std::function<Octets(std::size_t)>& message, int status = 0) {
    const TypeDescription& type = *findType(typeName);
    const std::string name = std::string(typeName) + ", " + what;
    const int policies[] = {0, ASN1F_NO_COPY, ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES,
                            ASN1F_EXACT, ASN1F_DER};
    const char* const names[] = {"", " no copy", " tolerant", " exact", " DER"};
    for (std::size_t i = 0; i < 5; ++i) {
        expectLinear(name + ": decode" + names[i], smallest, [&, i](std::size_t size) {
            return [&type, &policies, octets = message(size), i, status] {
                const int result = Decoded(type, octets, policies[i]).status;
                EXPECT_TRUE(i >= 3 || result == status) << result;
            };
        });
    }
    expectLinear(name + ": walk", smallest, [&](std::size_t size) {
        return [&type, octets = message(size)] {
            WalkVisitor visitor;
            walk(type, octets.data(), octets.size(), visitor);
        };
    });
    const auto jsonOf = [&type, &message](std::size_t size) {
        asn1text::TextSink json;
        asn1text::writeJson(type, message(size), json, asn1text::JsonLayout::OneLine);
        return json.whole;
    };
    expectLinear(name + ": to JSON", smallest, [&](std::size_t size) {
        return [&type, octets = message(size)] {
            asn1text::TextSink json;
            asn1text::writeJson(type, octets, json, asn1text::JsonLayout::OneLine);
        };
    });
    expectLinear(name + ": from JSON", smallest, [&](std::size_t size) {
        return [&type, json = jsonOf(size)] {
            Octets der;
            asn1text::JsonFailure failure;
            asn1text::encodeJson(type, json, der, failure);
        };
    });
    if (status != 0) {
        return;
    }
    const auto decoded = [&](std::size_t size) {
        return std::make_shared<Decoded>(type, message(size));
    };
    expectLinear(name + ": encode", smallest, [&](std::size_t size) {
        return [&type, value = decoded(size)] {
            int result = 0;
            tests::encodedValue(type, value->value, result);
        };
    });
    expectLinear(name + ": copy and give back", smallest, [&](std::size_t size) {
        return [&type, value = decoded(size)] {
            tests::Context copies;
            void* const copied = family::newRecord(copies, type);
            family::copy(copies, type, value->value, copied);
            family::release(copies, type, copied);
        };
    });
}

class Bounds : public testing::Test {
protected:
    void SetUp() override { g_malloc_func = &countedAllocate; }
};

const Octets UnknownExtension = tests::fromHex("30 09 06 03 2A 03 04 04 02 05 00");
const Octets KeyUsageExtension = tests::fromHex("30 0B 06 03 55 1D 0F 04 04 03 02 05 A0");
const Octets DnsName = tests::fromHex("82 03 61 62 63");
const Octets RelativeName = tests::fromHex("31 0B 30 09 06 03 55 04 06 13 02 52 55");

TEST_F(Bounds, Elements) {
    const auto lists = [](unsigned char identifier, const Octets& member) {
        return [=](std::size_t size) { return element(identifier, repeated(size, member)); };
    };
    expectMessagesLinear("Extensions", "one unknown", 500, lists(0x30, UnknownExtension));
    expectMessagesLinear("Extensions", "one known", 500, lists(0x30, KeyUsageExtension));
    expectMessagesLinear("GeneralNames", "hosts", 500, lists(0x30, DnsName));
    expectMessagesLinear("Name", "countries", 500, lists(0x30, RelativeName));
    expectMessagesLinear("AcceptableResponses", "identifiers", 500,
                         lists(0x30, tests::fromHex("06 03 2A 03 04")));
    expectMessagesLinear("PKIFreeText", "texts", 500, lists(0x30, tests::fromHex("0C 01 41")));
}

TEST_F(Bounds, SetsAreSorted) {
    expectMessagesLinear("Attribute", "values in reverse", 1000, [](std::size_t size) {
        Octets values;
        for (std::size_t i = size; i-- > 0;) {
            const auto high = static_cast<unsigned char>(i >> 8);
            tests::append(values, {0x04, 0x02, high, static_cast<unsigned char>(i & 0xFF)});
        }
        return element(0x30, joined(tests::fromHex("06 03 2A 03 04"), element(0x31, values)));
    });
}

TEST_F(Bounds, Segments) {
    const Octets algorithm = tests::fromHex("30 05 06 03 2A 03 04");
    for (const bool deep : {false, true}) {
        expectMessagesLinear("DigestInfo", deep ? "segments, indefinite" : "segments", 500,
                             [&](std::size_t size) {
                                 const Octets segments = repeated(size, tests::fromHex("04 01 41"));
                                 const Octets string = deep ? tests::elementOf(0x24, segments, true)
                                                            : element(0x24, segments);
                                 return element(0x30, joined(algorithm, string));
                             });
    }
    expectMessagesLinear("SubjectPublicKeyInfo", "segments of bits", 500, [&](std::size_t size) {
        return element(
            0x30, joined(algorithm, element(0x23, repeated(size, tests::fromHex("03 02 00 41")))));
    });
    expectMessagesLinear("PKIFreeText", "segments of text", 500, [](std::size_t size) {
        return element(0x30, element(0x2C, repeated(size, tests::fromHex("04 01 41"))));
    });
    expectMessagesLinear("Extension", "a known value in segments", 500, [](std::size_t size) {
        const Octets value = element(0x30, repeated(size, DnsName));
        Octets segments;
        for (const unsigned char octet : value) {
            tests::append(segments, {0x04, 0x01, octet});
        }
        return element(0x30, joined(tests::fromHex("06 03 55 1D 11"), element(0x24, segments)));
    });
}

/// Elements of indefinite length in each other.
Octets nested(std::size_t depth) {
    Octets message = repeated(depth, {0x30, 0x80});
    tests::append(message, repeated(depth, {0, 0}));
    return message;
}

TEST_F(Bounds, OpenElementsInEachOther) {
    expectMessagesLinear("AlgorithmIdentifier", "raw parameters nested", 500, [](std::size_t size) {
        return joined(tests::fromHex("30 80 06 03 2A 03 04"), joined(nested(size), {0, 0}));
    });
    expectLinear("xd_indeflen", 500, [](std::size_t size) {
        return [octets = nested(size)] {
            xd_indeflen_ex(octets.data(), static_cast<int>(octets.size()));
        };
    });
}

/// Messages that hold a message, so many levels.
Octets messagesInEachOther(std::size_t depth) {
    const Octets header = tests::fromHex("30 09 02 01 02 82 01 61 82 01 61");
    Octets message = element(0x30, joined(header, tests::fromHex("B3 02 05 00")));
    for (std::size_t i = 1; i < depth; ++i) {
        message = element(0x30, joined(header, element(0xB4, message)));
    }
    return message;
}

TEST_F(Bounds, Nesting) {
    const TypeDescription& type = *findType("PKIMessage");
    for (const std::size_t depth : {63u, 64u, 65u}) {
        const int expected = depth <= 64 ? 0 : ASN1S_NO_MEMORY;
        const Octets message = messagesInEachOther(depth);
        EXPECT_EQ(Decoded(type, message).status, expected) << depth;
        WalkVisitor visitor;
        EXPECT_EQ(walk(type, message.data(), message.size(), visitor).status, expected) << depth;
    }
    expectMessagesLinear("PKIMessage", "in each other", 16, messagesInEachOther);
    expectMessagesLinear("PKIMessage", "in each other, too deep", 128, messagesInEachOther,
                         ASN1S_NO_MEMORY);
}

TEST_F(Bounds, Identifiers) {
    expectMessagesLinear("CertPolicyId", "arcs", 32, [](std::size_t size) {
        return element(0x06, repeated(size - 2, {0x2A}));
    });
    expectMessagesLinear("CertPolicyId", "octets of an arc", 1000, [](std::size_t size) {
        return element(0x06, joined(repeated(size, {0x81}), {0x01}));
    });
    std::string text;
    expectLinear("rtStrToOid, rtOidToStr", 30, [](std::size_t size) {
        std::string dotted = "1";
        for (std::size_t i = 1; i < size; ++i) {
            dotted += ".4294967295";
        }
        return [dotted] {
            ASN1OBJID identifier{};
            char written[2048];
            EXPECT_TRUE(rtStrToOid(dotted.c_str(), &identifier));
            EXPECT_EQ(rtOidToStr(&identifier, written, sizeof written), 1);
        };
    });
}

TEST_F(Bounds, Numbers) {
    expectMessagesLinear("CertificateSerialNumber", "octets", 1000,
                         [](std::size_t size) { return element(0x02, repeated(size, {0x55})); });
    for (const int radix : {2, 16}) {
        expectLinear("big integer, radix " + std::to_string(radix), 1000,
                     [radix](std::size_t size) {
                         return [radix, digits = std::string(size, '1')] {
                             tests::Context ctxt;
                             RtBigIntDataRec number;
                             rtBigIntInit(&number);
                             EXPECT_EQ(rtBigIntSetStr(ctxt, &number, digits.c_str(), radix), 0);
                             std::string text(digits.size() + 16, ' ');
                             EXPECT_EQ(rtBigIntToString(ctxt, &number, radix, text.data(),
                                                        static_cast<int>(text.size())),
                                       0);
                             rtBigIntFree(ctxt, &number);
                         };
                     });
    }
}

namespace values = Brevantis::ASN1;

/// What a value class does with a message.
template <class Value>
void expectClassLinear(const std::string& name, std::size_t smallest,
                       const std::function<Octets(std::size_t)>& message) {
    const auto read = [&](std::size_t size) {
        const Octets octets = message(size);
        auto value = std::make_shared<Value>();
        value->decode(Brevantis::CBlob(octets.data(), octets.size()));
        return value;
    };
    expectLinear(name + "::decode", smallest, [&](std::size_t size) {
        const Octets octets = message(size);
        return [blob = Brevantis::CBlob(octets.data(), octets.size())] { Value().decode(blob); };
    });
    expectLinear(name + "::encode", smallest,
                 [&](std::size_t size) { return [value = read(size)] { value->encode(); }; });
}

TEST_F(Bounds, ValueClasses) {
    const auto extensions = [](std::size_t size) {
        return element(0x30, repeated(size, UnknownExtension));
    };
    expectClassLinear<values::CExtensions>("CExtensions of one identifier", 500, extensions);
    expectLinear("CExtensions::find", 500, [&](std::size_t size) {
        const Octets octets = extensions(size);
        auto list = std::make_shared<values::CExtensions>();
        list->decode(Brevantis::CBlob(octets.data(), octets.size()));
        return [list] { EXPECT_TRUE(list->find("1.2.3.5") == list->end()); };
    });
    const Octets attribute = tests::fromHex("30 0A 06 04 2A 03 04 05 31 02 05 00");
    const auto attributes = [&](std::size_t size) {
        return element(0x31, repeated(size, attribute));
    };
    expectClassLinear<values::CAttributes>("CAttributes of one identifier", 500, attributes);
    expectLinear("CAttributes::find", 500, [&](std::size_t size) {
        const Octets octets = attributes(size);
        auto list = std::make_shared<values::CAttributes>();
        list->decode(Brevantis::CBlob(octets.data(), octets.size()));
        return [list] { EXPECT_TRUE(list->find("1.2.3.6") == list->end()); };
    });
    const auto names = [](std::size_t size) { return element(0x30, repeated(size, RelativeName)); };
    expectClassLinear<values::CName>("CName", 500, names);
    expectClassLinear<values::CGeneralNames>("CGeneralNames", 500, [](std::size_t size) {
        return element(0x30, repeated(size, DnsName));
    });
    expectLinear("CName, text", 200, [&](std::size_t size) {
        std::wstring text = L"C=RU";
        for (std::size_t i = 1; i < size; ++i) {
            text += L",C=RU";
        }
        return [text] {
            values::CName name(text.c_str());
            EXPECT_EQ(name.toString().length(), text.size());
        };
    });
    expectLinear("info items", 500, [](std::size_t size) {
        return [size] {
            values::CInfoTypeAndValueList list;
            for (std::size_t i = 0; i < size; ++i) {
                list.push_back(values::CInfoTypeAndValue("1.2.3", Brevantis::CBlob()));
            }
            EXPECT_TRUE(list.find("1.2.4") == list.end());
            list.remove("1.2.3");
        };
    });
}

TEST_F(Bounds, Modules) {
    const auto compile = [](const std::vector<asn1gen::SourceFile>& files) {
        notation::Diagnostics diagnostics;
        asn1gen::compile(files, {}, diagnostics);
    };
    expectLinear("modules of one name", 100, [&](std::size_t size) {
        return [&compile, files = std::vector<asn1gen::SourceFile>(
                              size, {"a.asn1", "A DEFINITIONS ::= BEGIN END"})] { compile(files); };
    });
    expectLinear("types that are missing", 100, [&](std::size_t size) {
        std::string text = "A DEFINITIONS ::= BEGIN\n";
        for (std::size_t i = 0; i < size; ++i) {
            text += "B" + std::to_string(i) + " ::= SEQUENCE { c C }\n";
        }
        return [&compile, files = std::vector<asn1gen::SourceFile>{{"a.asn1", text + "END\n"}}] {
            compile(files);
        };
    });
}

TEST_F(Bounds, RevocationLists) {
    expectLinear("RevocationIndex, one serial number", 1000, [](std::size_t size) {
        const Octets entry =
            tests::fromHex("30 12 02 01 07 17 0D 32 35 30 31 30 31 30 30 30 30 30 30 5A");
        const Octets head = tests::fromHex(
            "02 01 01 30 05 06 03 2A 03 04 30 00 17 0D 32 35 30 31 30 31 30 30 30 30 30 30 5A");
        const Octets contents = joined(head, element(0x30, repeated(size, entry)));
        const Octets list =
            element(0x30, joined(element(0x30, contents),
                                 tests::fromHex("30 05 06 03 2A 03 04 03 02 00 01")));
        return [list] {
            RevocationList opened;
            EXPECT_EQ(opened.open(list.data(), list.size()), 0);
            RevocationIndex index;
            EXPECT_EQ(index.build(opened), 0);
        };
    });
}

} // namespace

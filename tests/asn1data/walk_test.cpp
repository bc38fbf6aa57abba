#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <brevantis/asn1/asn1data.h>
#include <gtest/gtest.h>

#include "support/ca_bundle.h"
#include "support/counting_allocator.h"
#include "support/data_file.h"
#include "support/shapes_catalogue.h"
#include "support/value_text.h"

namespace {

long newCalls = 0;

} // namespace

// Counts what the library would take from the language's own heap. Inlined, the pairs look
// mismatched to gcc.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++newCalls;
    if (void* block = std::malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}

namespace {

using namespace asn1data;
using tests::DataRow;
using tests::dataRows;
using tests::Octets;

const TypeDescription& typeOf(const DataRow& row) {
    const TypeDescription* type = asn1data::findType(row.text("type"));
    type = type != nullptr ? type : shapes::findType(row.text("type"));
    return type != nullptr ? *type : throw std::runtime_error("no type " + row["type"]);
}

/// Writes down what is reported: "path@offset:header+contents=value", what is entered with the
/// elements in it in braces. EXPLICIT tags show as "path@offset/value's offset:...".
class Notes : public WalkVisitor {
public:
    WalkAction enter(const WalkElement& element) override {
        note(element, element.encapsulates ? "=" + value(element) + "{" : "{");
        return act(element);
    }
    WalkAction leave(const WalkElement& /*element*/) override {
        text.back() = '}';
        text += ' ';
        return WalkAction::Continue;
    }
    WalkAction primitive(const WalkElement& element) override {
        note(element, "=" + value(element));
        return act(element);
    }

    std::string text;
    std::string skipped; ///< path of an element that is not entered
    std::string last;    ///< path of an element to stop at

private:
    static std::string value(const WalkElement& element) {
        if (const ASN1OBJID* identifier = element.value.identifier) {
            char dotted[100] = "";
            rtOidToStr(identifier, dotted, sizeof dotted);
            return dotted;
        }
        if (element.type != nullptr && tests::isNumeric(element.type->shape)) {
            return std::to_string(element.value.number);
        }
        Octets octets(copyOctets(element, nullptr, 0));
        copyOctets(element, octets.data(), octets.size());
        std::string text;
        for (const char c : tests::toHex(octets)) {
            text += c != ' ' ? std::string(1, c) : "";
        }
        return element.value.bitCount != 0 ? text + "/" + std::to_string(element.value.bitCount)
                                           : text;
    }
    void note(const WalkElement& element, const std::string& rest) {
        text += pathText(*element.step) + "@" + std::to_string(element.offset);
        if (element.valueOffset != element.offset) {
            text += "/" + std::to_string(element.valueOffset);
        }
        text += ":" + std::to_string(element.headerLength) + "+" +
                (element.contentLength == ASN1IndefiniteLength
                     ? "?"
                     : std::to_string(element.contentLength)) +
                (element.assembled ? "*" : "") + rest + " ";
    }
    WalkAction act(const WalkElement& element) const {
        const std::string path = pathText(*element.step);
        return path == last                          ? WalkAction::Stop
               : path == skipped && !skipped.empty() ? WalkAction::Skip
                                                     : WalkAction::Continue;
    }
};

TEST(Walk, ReportsWhatStandsInAMessage) {
    for (const DataRow& row : dataRows("walk.txt", "reports")) {
        SCOPED_TRACE(row);
        const Octets message = tests::fromHex(row["message"]);
        Notes notes;
        notes.last = "none";
        const WalkResult result = walk(typeOf(row), message.data(), message.size(), notes);
        EXPECT_EQ(result.status, 0) << failureText(result.failure);
        EXPECT_EQ(result.consumed, row.number<unsigned>("consumed"));
        EXPECT_EQ(notes.text, row["reports"] + " ");
    }
}

TEST(Walk, TellsWhyAMessageFails) {
    for (const DataRow& row : dataRows("walk.txt", "failures")) {
        SCOPED_TRACE(row);
        const Octets message = tests::fromHex(row["message"]);
        WalkVisitor nobody;
        const WalkResult result = walk(typeOf(row), message.data(), message.size(), nobody);
        EXPECT_EQ(failureText(result.failure), row["failure"]);
        EXPECT_EQ(result.failure.elementOffset, row.number<unsigned>("element"));
    }
}

TEST(Walk, FindsAnElementByItsPath) {
    for (const DataRow& row : dataRows("walk.txt", "paths")) {
        SCOPED_TRACE(row);
        const Octets message = tests::fromHex(row["message"]);
        const ElementSpan span =
            findElement(typeOf(row), message.data(), message.size(), row.text("path"));
        EXPECT_EQ(span.status, row.number("status"));
        const std::string found =
            span.data != nullptr ? tests::toHex(span.data, span.size) : std::string();
        EXPECT_EQ(found, row["found"]);
        if (span.status == 0) {
            EXPECT_EQ(span.data, message.data() + span.offset);
        }
    }
}

TEST(Walk, FindsManyElementsInOnePass) {
    // One inside another, one twice, one behind, one missing; and more than one pass takes.
    const Octets message = tests::fromHex("30 0A 30 06 02 01 05 02 01 06 30 00");
    const TypeDescription& type = *shapes::findType("ListOfLists");
    std::vector<const char*> paths(20, "[0][1]");
    const char* const first[] = {"[1]", "[0][0]", "[0]", "[0][2]", "[x]", "", "[0][0]", "[2]"};
    std::copy(std::begin(first), std::end(first), paths.begin());
    std::vector<ElementSpan> spans(paths.size());
    findElements(type, message.data(), message.size(), paths.data(), spans.data(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        SCOPED_TRACE(paths[i]);
        const ElementSpan alone = findElement(type, message.data(), message.size(), paths[i]);
        EXPECT_EQ(spans[i].status, alone.status);
        EXPECT_EQ(spans[i].data, alone.data);
        EXPECT_EQ(spans[i].size, alone.size);
    }
    EXPECT_EQ(spans[0].offset, 10u);
    EXPECT_EQ(spans[3].status, ASN1S_MISSING_ELEMENT);
    EXPECT_EQ(spans[4].status, ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(spans[19].offset, 7u);

    // A failure is that of all that lie behind it.
    const Octets broken = tests::fromHex("30 0A 30 06 02 01 05 05 01 06 30 00");
    findElements(type, broken.data(), broken.size(), paths.data(), spans.data(), 2);
    EXPECT_EQ(spans[0].status, ASN1S_TAG_NOT_FOUND);
    EXPECT_EQ(spans[1].status, 0);
}

TEST(Walk, ReportsWhatCameBeforeAFailure) {
    const struct {
        const char* type;
        const char* message;
        const char* reports;
    } rows[] = {
        // The second value of a kind is of another type.
        {"OpenList", "30 0D 06 03 2A 03 02 31 06 0C 01 41 04 01 42",
         "@0:2+13{ kind@2:2+3=1.2.3.2 values@7:2+6{ values[0].kindText@9:2+1=41 "},
        // An element stands behind the open value.
        {"OpenList", "30 0F 06 03 2A 03 02 31 06 0C 01 41 0C 01 42 05 00",
         "@0:2+15{ kind@2:2+3=1.2.3.2 values@7:2+6{ values[0]@9:2+1=0C0141 "
         "values[1]@12:2+1=0C0142} "},
        {"OpenFirst", "30 0A 06 03 2A 03 02 0C 01 41 05 00",
         "@0:2+10{ kind@2:2+3=1.2.3.2 value@7:2+1=0C0141 "},
        // An element behind the open value fails inside, where the value has no place.
        {"OpenFirst", "30 10 06 03 2A 03 02 0C 01 41 30 06 02 01 05 05 01 2A",
         "@0:2+16{ kind@2:2+3=1.2.3.2 inner@10:2+6{ inner.a@12:2+1=5 "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const Octets message = tests::fromHex(row.message);
        Notes notes;
        notes.last = "none";
        EXPECT_LT(walk(*shapes::findType(row.type), message.data(), message.size(), notes).status,
                  0);
        EXPECT_EQ(notes.text, row.reports);
    }
}

TEST(Walk, StepsOverAndStopsAsTheVisitorSays) {
    // The record that is stepped over has a broken element, and too many of them.
    const Octets message = tests::fromHex("30 0D A4 08 02 01 05 06 00 05 00 05 9E 01 FF");
    const TypeDescription& type = *shapes::findType("Tagged");
    Notes notes;
    notes.last = "none";
    notes.skipped = "implicitRecord";
    EXPECT_EQ(walk(type, message.data(), message.size(), notes).status, 0);
    EXPECT_EQ(notes.text, "@0:2+13{ implicitRecord@2:2+8{ required@12:2+1=255} ");

    Notes stopping;
    stopping.last = "implicitRecord";
    const WalkResult stopped = walk(type, message.data(), message.size(), stopping);
    EXPECT_TRUE(stopped.stopped);
    EXPECT_EQ(stopped.status, 0);

    // What claims to be longer than the message cannot be stepped over.
    Octets longer = message;
    longer[3] = 0x7F;
    EXPECT_EQ(walk(type, longer.data(), longer.size(), notes).status, ASN1S_END_OF_BUFFER);
}

TEST(Walk, RefusesSizesThatNoMessageCanHave) {
    const unsigned char octet = 0x30;
    WalkVisitor nobody;
    const TypeDescription& type = *asn1data::findType("Certificate");
    EXPECT_EQ(walk(type, &octet, std::size_t{1} << 31, nobody).status, ASN1S_VALUE_TOO_BIG);
    EXPECT_EQ(walk(type, nullptr, 1, nobody).status, ASN1S_INVALID_PARAMETER);
    EXPECT_EQ(walk(type, nullptr, 0, nobody).status, ASN1S_TAG_NOT_FOUND);
}

TEST(Walk, CutsATextWhereTheRoomEnds) {
    const WalkStep message{nullptr, nullptr, 0, StepKind::Message};
    const WalkStep member{&message, "extensions", 0, StepKind::Member};
    const WalkStep index{&member, nullptr, 3, StepKind::Index};
    char text[6];
    EXPECT_EQ(writePath(index, text, sizeof text), 13u);
    EXPECT_STREQ(text, "exten");
    EXPECT_EQ(writePath(index, nullptr, 0), 13u);
}

TEST(Walk, CutsAPathThatIsTooLong) {
    Octets message = tests::fromHex("02 01 05"); // no alternative of the innermost CHOICE
    for (int i = 0; i < 60; ++i) {
        const std::size_t size = message.size();
        message.insert(message.begin(), {0xA0, 0x82, static_cast<unsigned char>(size >> 8),
                                         static_cast<unsigned char>(size & 0xFF)});
    }
    WalkVisitor nobody;
    const WalkResult result =
        walk(*shapes::findType("Chain"), message.data(), message.size(), nobody);
    EXPECT_EQ(result.status, ASN1S_INVALID_CHOICE);
    EXPECT_TRUE(result.failure.pathCut);
    EXPECT_EQ(std::string(result.failure.path).size(), WalkFailure::PathSize - 1);
}

/// Counts primitives and says where each part of the way leads, allocating nothing.
class Counter : public WalkVisitor {
public:
    WalkAction primitive(const WalkElement& element) override {
        char path[200];
        writePath(*element.step, path, sizeof path);
        ++primitives;
        return WalkAction::Continue;
    }
    std::size_t primitives = 0;
};

TEST(Walk, AllocatesNothing) {
    if (tests::caBundle().empty()) {
        GTEST_SKIP() << tests::NoCaBundle;
    }
    const tests::CountingAllocator allocator;
    const TypeDescription& type = *asn1data::findType("Certificate");
    Counter counter;
    const long before = newCalls;
    for (const Octets& certificate : tests::caBundle()) {
        EXPECT_EQ(walk(type, certificate.data(), certificate.size(), counter).status, 0);
        EXPECT_EQ(
            findElement(type, certificate.data(), certificate.size(), "tbsCertificate").offset, 4u);
    }
    EXPECT_EQ(newCalls, before);
    EXPECT_EQ(tests::CountingAllocator::calls(), 0);
    EXPECT_GT(counter.primitives, 30 * tests::caBundle().size());
}

TEST(Walk, GivesBackWhatPutsSegmentsTogether) {
    const tests::CountingAllocator allocator;
    const TypeDescription& type = *shapes::findType("Contained");
    Octets message =
        tests::fromHex("30 13 06 03 2A 03 01 24 0C 04 03 30 06 02 04 05 01 05 06 01 2A");
    Counter counter;
    EXPECT_EQ(walk(type, message.data(), message.size(), counter).status, 0);
    message[18] = 0x01; // a failure inside them
    EXPECT_EQ(walk(type, message.data(), message.size(), counter).status, ASN1S_TAG_NOT_FOUND);
    EXPECT_GT(tests::CountingAllocator::calls(), 0);
    EXPECT_EQ(tests::CountingAllocator::live(), 0);
    // Without memory the walk fails as decoding does.
    tests::CountingAllocator::failAfter(0);
    WalkVisitor nobody;
    EXPECT_EQ(walk(type, message.data(), message.size(), nobody).status, ASN1S_NO_MEMORY);
    tests::CountingAllocator::neverFail();
}

TEST(Walk, GoesThroughAMillionEntriesInConstantMemory) {
    constexpr unsigned Entries = 1000000;
    const Octets entry = tests::fromHex("30 12 02 01 05 17 0D");
    Octets list;
    list.reserve(Entries * 20);
    for (unsigned i = 0; i < Entries; ++i) {
        list.insert(list.end(), entry.begin(), entry.end());
        const std::string date = "240101000000Z";
        list.insert(list.end(), date.begin(), date.end());
    }
    const auto wrapped = [](unsigned char identifier, const Octets& before,
                            const Octets& contents) {
        const std::size_t size = before.size() + contents.size();
        Octets element = {identifier, 0x84};
        for (int shift = 24; shift >= 0; shift -= 8) {
            element.push_back(static_cast<unsigned char>(size >> shift & 0xFF));
        }
        element.insert(element.end(), before.begin(), before.end());
        element.insert(element.end(), contents.begin(), contents.end());
        return element;
    };
    const Octets content = wrapped(0x30, {}, list);
    const Octets tbs =
        wrapped(0x30,
                tests::fromHex("30 03 06 01 2A 30 00 17 0D 32 34 30 31 30 31 30 30 30 "
                               "30 30 30 5A"),
                content);
    Octets signature = tests::fromHex("30 03 06 01 2A 03 01 00");
    Octets body = tbs;
    body.insert(body.end(), signature.begin(), signature.end());
    const Octets message = wrapped(0x30, {}, body);

    const tests::CountingAllocator allocator;
    const TypeDescription& type = *asn1data::findType("CertificateList");
    Counter counter;
    const long before = newCalls;
    const WalkResult result = walk(type, message.data(), message.size(), counter);
    EXPECT_EQ(result.status, 0) << failureText(result.failure);
    EXPECT_EQ(result.consumed, message.size());
    EXPECT_GE(counter.primitives, 2 * Entries);
    const ElementSpan last = findElement(type, message.data(), message.size(),
                                         "tbsCertList.revokedCertificates[999999]");
    EXPECT_EQ(last.status, 0);
    EXPECT_EQ(last.offset + last.size, message.size() - signature.size());
    EXPECT_EQ(newCalls, before);
    EXPECT_EQ(tests::CountingAllocator::calls(), 0);
}

TEST(Describe, NamesIdentifiersNumbersAndBits) {
    const ASN1OBJID* before = nullptr;
    for (const IdentifierDescription& described : allIdentifiers()) {
        const char* const name = identifierName(*described.identifier);
        ASSERT_NE(name, nullptr) << described.name;
        // Of several constants with the same arcs the first stands for all.
        const bool first = before == nullptr || *before != *described.identifier;
        EXPECT_EQ(first, std::string(name) == described.name) << described.name;
        before = described.identifier;
    }
    EXPECT_GT(allIdentifiers().size(), 400u);
    EXPECT_EQ(identifierName(ASN1OBJID{3, {1, 2, 3}}), nullptr);
    EXPECT_EQ(identifierName(ASN1OBJID{0, {}}), nullptr);
    const auto nameOf = [](const char* type, long long number) {
        const char* const name = numberName(*asn1data::findType(type), number);
        return std::string(name != nullptr ? name : "none");
    };
    EXPECT_EQ(nameOf("CRLReason", 8), "removeFromCRL");
    EXPECT_EQ(nameOf("CRLReason", 7), "none");
    EXPECT_EQ(nameOf("ReasonFlags", 8), "aACompromise");
    EXPECT_EQ(nameOf("Certificate", 0), "none");
}

} // namespace

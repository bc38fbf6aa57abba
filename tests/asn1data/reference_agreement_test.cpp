#include <algorithm>
#include <cstdlib>
#include <string>

#include <brevantis/asn1/asn1data.h>
#include <gtest/gtest.h>

#include "support/coding.h"
#include "support/damaged_values.h"
#include "support/odd_messages.h"
#include "support/reference_decoder.h"
#include "support/shapes_catalogue.h"
#include "support/status_tally.h"
#include "support/value_text.h"

// Decoding and walking share the code that knows which element may begin where. Here both are held
// against a decoder that shares nothing with them: status, place and value of every message.

namespace {

using namespace asn1data;
using tests::Octets;

/// Writes down what a walk reports, as the reference does.
class ElementNotes : public WalkVisitor {
public:
    WalkAction enter(const WalkElement& element) override {
        note(element);
        text += "{\n";
        return WalkAction::Continue;
    }
    WalkAction leave(const WalkElement& /*element*/) override {
        text += "}\n";
        return WalkAction::Continue;
    }
    WalkAction primitive(const WalkElement& element) override {
        note(element);
        return WalkAction::Continue;
    }

    std::string text;

private:
    static std::string value(const WalkElement& element) {
        const Shape shape = element.type != nullptr ? element.type->shape : Shape::OpenType;
        if (tests::isNumeric(shape)) {
            return std::to_string(element.value.number);
        }
        if (element.value.identifier != nullptr) {
            return tests::numbersText(element.value.identifier->subid,
                                      element.value.identifier->numids);
        }
        Octets octets(copyOctets(element, nullptr, 0));
        copyOctets(element, octets.data(), octets.size());
        const bool bits = shape == Shape::BitString || shape == Shape::FixedBitString;
        return tests::toHex(octets) + (bits ? "/" + std::to_string(element.value.bitCount) : "");
    }
    void note(const WalkElement& element) {
        text += tests::elementNote(pathText(*element.step), element.offset, element.valueOffset,
                                   element.headerLength, element.contentLength, element.assembled,
                                   element.type, value(element));
    }
};

/// Holds decoding and walking against the reference, and prints at its end how messages came out.
class Agreement {
public:
    /// @return false after a difference
    bool check(const TypeDescription& type, const Octets& message) {
        const tests::ReferenceDecoding expected = tests::referenceDecoding(type, message);
        statuses_.add(expected.status);

        tests::Reader reader(message);
        if (!message.empty()) {
            xd_setp(reader, reader->buffer.data, static_cast<int>(message.size()), nullptr,
                    nullptr);
        }
        void* const value = family::newRecord(reader, type);
        EXPECT_EQ(family::decode(reader, type, value, ASN1TagExplicit, 0), expected.status);
        expectPlace(reader.position(), expected);

        ElementNotes notes;
        const WalkResult walked = walk(type, message.data(), message.size(), notes);
        EXPECT_EQ(walked.status, expected.status) << failureText(walked.failure);
        expectPlace(expected.status == 0 ? walked.consumed : walked.failure.partOffset, expected);
        if (expected.status == 0 && !testing::Test::HasFailure()) {
            expectSame(tests::valueText(type, value), expected.value);
            expectSame(notes.text, expected.elements);
        }
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << type.name << " of " << tests::toHex(message);
            return false;
        }
        return true;
    }

private:
    static void expectSame(const std::string& text, const std::string& expected) {
        const auto shared =
            std::mismatch(text.begin(), text.end(), expected.begin(), expected.end());
        EXPECT_EQ(text, expected) << "from here: "
                                  << std::string(shared.first, text.end()).substr(0, 200)
                                  << "\nand here: "
                                  << std::string(shared.second, expected.end()).substr(0, 200);
    }

    /// How far a primitive is read before it is refused is the library's own affair.
    static void expectPlace(unsigned place, const tests::ReferenceDecoding& expected) {
        if (expected.inside) {
            EXPECT_GE(place, expected.position);
        } else {
            EXPECT_EQ(place, expected.position);
        }
    }

    tests::StatusTally statuses_;
};

/// Values a type. The environment raises it for a thorough run.
unsigned valuesPerType() {
    const char* wanted = std::getenv("BREVANTIS_VALUES_PER_TYPE");
    return wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : 4;
}

void checkValuesOf(const TypeRange& types, unsigned mutations) {
    Agreement agreement;
    tests::checkDamagedValues(types, valuesPerType(), mutations, agreement);
}

TEST(ReferenceAgreement, OnValuesOfTheCatalogue) {
    checkValuesOf(asn1data::allTypes(), 16);
}

TEST(ReferenceAgreement, OnValuesOfEveryShape) {
    checkValuesOf(shapes::allTypes(), 60);
}

TEST(ReferenceAgreement, OnOddMessagesWithEveryOctetChanged) {
    Agreement agreement;
    tests::checkOddMessages(agreement);
}

} // namespace

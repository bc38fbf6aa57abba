#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "support/coding.h"
#include "support/value_builder.h"

// Every bound of every type of the catalogue, by the descriptions alone: a random value that breaks
// exactly this one is refused on the way out, and its octets, written under a description without
// the bound, are refused on the way in.

namespace {

using namespace asn1data;
using tests::Octets;

enum : long long { Unbounded = 0x7FFFFFFF };

bool permits(const Constraint& constraint, long long number) {
    for (unsigned i = 0; i < constraint.count; ++i) {
        if (number >= constraint.ranges[i].lower && number <= constraint.ranges[i].upper) {
            return true;
        }
    }
    return false;
}

/// The numbers next to the permitted ones. None of the bounded types holds a negative number.
std::vector<long long> numbersBeside(const Constraint& constraint) {
    std::vector<long long> numbers;
    for (unsigned i = 0; i < constraint.count; ++i) {
        for (const long long number :
             {constraint.ranges[i].lower - 1, constraint.ranges[i].upper + 1}) {
            if (number >= 0 && number < Unbounded && !permits(constraint, number)) {
                numbers.push_back(number);
            }
        }
    }
    return numbers;
}

/// How many units the record itself has room for.
long long room(const TypeDescription& type) {
    switch (type.shape) {
    case Shape::FixedOctetString:
    case Shape::FixedArray:
        return type.capacity;
    case Shape::FixedBitString:
        return (type.capacity + 7) / 8 * 8;
    default:
        return Unbounded;
    }
}

/// A description of the same notation whose values hang from pointers, of any size.
TypeDescription roomy(TypeDescription type) {
    type.countOffset = 0;
    type.dataOffset = offsetof(ASN1TDynOctStr, data);
    type.valueSize = sizeof(ASN1TDynOctStr);
    type.shape = type.shape == Shape::FixedOctetString ? Shape::OctetString
                 : type.shape == Shape::FixedBitString ? Shape::BitString
                                                       : Shape::Array;
    return type;
}

int statusOf(const TypeDescription& type) {
    return type.shape == Shape::Enumerated ? ASN1S_INVALID_ENUM : ASN1S_CONSTRAINT_VIOLATION;
}

int overflowOf(const TypeDescription& type) {
    return type.shape == Shape::FixedArray ? ASN1S_EXTRA_ELEMENT : ASN1S_STRING_OVERFLOW;
}

int encode(ASN1CTXT* ctxt, const TypeDescription& type, void* value) {
    EXPECT_EQ(xe_setp(ctxt, nullptr, 0), 0);
    return family::encode(ctxt, type, value, ASN1TagExplicit);
}

void expectDecode(const TypeDescription& type, ASN1CTXT* written, int status) {
    const ASN1Buffer& buffer = written->buffer;
    tests::Reader reader(Octets(buffer.data + buffer.byteIndex, buffer.data + buffer.size - 1));
    void* value = family::newRecord(reader, type);
    ASSERT_EQ(xd_setp(reader, reader->buffer.data, static_cast<int>(reader->buffer.size), nullptr,
                      nullptr),
              0);
    EXPECT_EQ(family::decode(reader, type, value, ASN1TagExplicit, 0), status);
    EXPECT_EQ(reader.recorded(), status);
    family::release(reader, type, value);
}

/// A value of @p broken is refused under @p type; @p lifted writes it.
void expectRefused(const TypeDescription& type, const TypeDescription& lifted, ASN1CTXT* ctxt,
                   void* value, int status) {
    EXPECT_EQ(encode(ctxt, type, value), status);
    EXPECT_EQ(ctxt->errInfo.status, status);
    rtErrReset(&ctxt->errInfo);
    ASSERT_GT(encode(ctxt, lifted, value), 0);
    expectDecode(type, ctxt, status);
}

/// Breaks the bound of a type itself.
unsigned breakOwn(const TypeDescription& type) {
    unsigned broken = 0;
    for (const long long number : numbersBeside(type.constraint)) {
        SCOPED_TRACE(std::string(type.name) + ": " + std::to_string(number));
        ++broken;
        const ValueRange range = {number, number};
        TypeDescription lifted = number > room(type) ? roomy(type) : type;
        lifted.constraint = {&range, 1};
        tests::Context context;
        void* value = tests::ValueBuilder(context, 1).build(lifted);
        lifted.constraint = {};
        if (number <= room(type)) {
            expectRefused(type, lifted, context, value, statusOf(type));
            continue;
        }
        // What the record cannot hold can only come from outside.
        EXPECT_GT(encode(context, lifted, value), 0);
        expectDecode(type, context, overflowOf(type));
    }
    return broken;
}

bool has(const TypeDescription& type, unsigned index, const void* record) {
    const auto word = [&](unsigned offset) {
        unsigned number = 0;
        std::memcpy(&number, static_cast<const unsigned char*>(record) + offset, sizeof(number));
        return number;
    };
    if (type.shape == Shape::Choice) {
        return word(type.countOffset) == index + 1;
    }
    return type.elements[index].presence != Presence::Optional ||
           (word(type.presenceOffset) >> type.elements[index].presenceBit & 1u) != 0;
}

/// Breaks the bound of one element, its own or that of its type.
unsigned breakElement(const TypeDescription& type, unsigned index) {
    const ElementDescription& element = type.elements[index];
    const Constraint& constraint =
        element.constraint.count != 0 ? element.constraint : element.type->constraint;
    unsigned broken = 0;
    for (const long long number : numbersBeside(constraint)) {
        if (number > room(*element.type)) {
            continue;
        }
        SCOPED_TRACE(std::string(type.name) + "." + element.name + ": " + std::to_string(number));
        ++broken;
        const ValueRange range = {number, number};
        std::vector<ElementDescription> elements(type.elements, type.elements + type.elementCount);
        TypeDescription unbounded = *element.type;
        TypeDescription lifted = type;
        lifted.elements = elements.data();
        elements[index].constraint = {&range, 1};
        tests::Context context;
        void* value = nullptr;
        for (unsigned long long seed = 1; value == nullptr || !has(type, index, value); ++seed) {
            if (seed > 1000) {
                ADD_FAILURE() << "never there";
                return broken;
            }
            value = tests::ValueBuilder(context, seed).build(lifted);
        }
        unbounded.constraint = {};
        elements[index].constraint = {};
        elements[index].type = &unbounded;
        expectRefused(type, lifted, context, value, statusOf(*element.type));
    }
    return broken;
}

TEST(BrokenConstraint, IsRefusedBothWays) {
    unsigned own = 0;
    unsigned elements = 0;
    for (const TypeDescription* type : allTypes()) {
        own += breakOwn(*type);
        for (unsigned i = 0; i < type->elementCount; ++i) {
            elements += breakElement(*type, i);
        }
    }
    RecordProperty("own", static_cast<int>(own));
    RecordProperty("elements", static_cast<int>(elements));
    // Fewer would mean that the loop passes bounds by.
    EXPECT_GE(own, 127u);
    EXPECT_GE(elements, 352u);
}

} // namespace

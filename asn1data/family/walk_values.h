#ifndef BREVANTIS_ASN1DATA_FAMILY_WALK_VALUES_H
#define BREVANTIS_ASN1DATA_FAMILY_WALK_VALUES_H

#include <algorithm>
#include <cstring>

#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>
#include <brevantis/asn1/runtime/utf8.h>

#include "walker.h"

// How the walk reads primitives where they stand, without keeping them.

namespace asn1data::family {

/// Counts the characters of a text that a constraint is about: those in front of a zero octet.
struct TextCount {
    ASN1UTF8Count count{};
    bool utf8;

    static void take(void* state, const unsigned char* octets, unsigned size) noexcept {
        auto& text = *static_cast<TextCount*>(state);
        if (text.utf8) {
            rtUTF8CountPiece(&text.count, octets, size);
        } else if (!text.count.ended) {
            const auto* end = static_cast<const unsigned char*>(std::memchr(octets, 0, size));
            text.count.ended = end != nullptr;
            text.count.characters += static_cast<int>(end != nullptr ? end - octets : size);
        }
    }
};

/// Reads the value of a primitive without keeping it. What its constraint is about goes to
/// Walker::number.
struct Walker::PrimitiveReader {
    Walker& walker;
    const TypeDescription& type;
    ASN1TagType tagging;
    int length;
    WalkValue& value;

    int operator()(Is<Shape::Boolean>) const { return number<unsigned char>(xd_boolean); }
    int operator()(Is<Shape::Integer>) const { return number<int>(xd_integer); }
    int operator()(Is<Shape::Unsigned>) const { return number<unsigned>(xd_unsigned); }
    int operator()(Is<Shape::Unsigned16>) const { return number<unsigned short>(xd_uint16); }
    int operator()(Is<Shape::Enumerated>) const {
        const int status = number<int>(xd_enum);
        value.number = walker.number = static_cast<unsigned>(value.number);
        return status;
    }
    int operator()(Is<Shape::BigInteger>) const {
        ASN1Extent extent{};
        const int status = xd_measureBigInt(&walker.ctxt, &extent, tagging, length);
        return octets(extent, status);
    }
    int operator()(Is<Shape::BigUnsigned>) const { return (*this)(Is<Shape::BigInteger>()); }
    int operator()(Is<Shape::Null>) const { return xd_null(&walker.ctxt, tagging); }
    int operator()(Is<Shape::ObjectIdentifier>) const {
        value.identifier = &walker.identifier_;
        return xd_objid(&walker.ctxt, &walker.identifier_, tagging, length);
    }
    int operator()(Is<Shape::OctetString>) const {
        ASN1Extent extent{};
        const int status = xd_measureOctets(&walker.ctxt, &extent, nullptr, tagging, length);
        return counted(extent, status);
    }
    int operator()(Is<Shape::FixedOctetString>) const {
        ASN1Extent extent{};
        const int status =
            xd_measureFixedOctets(&walker.ctxt, &extent, type.capacity, tagging, length);
        return counted(extent, status);
    }
    int operator()(Is<Shape::BitString>) const {
        ASN1Extent extent{};
        const int status = xd_measureBits(&walker.ctxt, &extent, tagging, length);
        return bits(extent, status);
    }
    int operator()(Is<Shape::FixedBitString>) const {
        ASN1Extent extent{};
        const int status =
            xd_measureFixedBits(&walker.ctxt, &extent, type.capacity, tagging, length);
        return bits(extent, status);
    }
    int operator()(Is<Shape::Text>) const {
        TextCount text{{}, type.tag == Utf8StringTag};
        const ASN1OctetSink sink{&TextCount::take, &text};
        ASN1Extent extent{};
        const int status = xd_measureText(&walker.ctxt, &extent, &sink, tagging, type.tag, length);
        walker.number = static_cast<unsigned>(text.count.characters);
        return octets(extent, status);
    }
    int operator()(Is<Shape::Text16>) const { return wideText(2); }
    int operator()(Is<Shape::Text32>) const { return wideText(4); }
    int operator()(Is<Shape::OpenType>) const { return walker.readRaw(); }
    template <Shape S, class = std::enable_if_t<!isPrimitive(S)>>
    int operator()(Is<S>) const {
        return ASN1S_NOT_SUPPORTED; // no coder reads these as a whole
    }

private:
    template <class Number, class Coder>
    int number(Coder coder) const {
        Number read = 0;
        const int status = coder(&walker.ctxt, &read, tagging, length);
        value.number = walker.number = read;
        return status;
    }
    int octets(const ASN1Extent& extent, int status) const {
        value.octets = extent.count != 0 ? extent.data : nullptr;
        value.octetCount = extent.count;
        return status;
    }
    int counted(const ASN1Extent& extent, int status) const {
        walker.number = extent.count;
        return octets(extent, status);
    }
    int bits(ASN1Extent extent, int status) const {
        walker.number = value.bitCount = extent.count;
        extent.count = extent.count / 8 + (extent.count % 8 != 0 ? 1 : 0);
        return octets(extent, status);
    }
    int wideText(unsigned width) const {
        ASN1Extent extent{};
        const int status =
            xd_measureWideText(&walker.ctxt, &extent, width, tagging, type.tag, length);
        walker.number = extent.count;
        extent.count *= width;
        return octets(extent, status);
    }
};

/// Most octets of an IMPLICIT value that are read as a whole: their bits can be counted.
constexpr unsigned LongestWhole = 0xFFFFFF;

/// Takes the usual form of a value, which stands whole in a primitive element: what most messages
/// consist of is to be read in few steps. It says no to everything else, and to what a coder might
/// refuse; PrimitiveReader then reads it from the start.
struct Walker::WholeReader {
    Walker& walker;
    const TypeDescription& type;
    const WholeContents& whole;
    WalkValue& value;

    // The coders of these two take lengths of one octet alone.
    bool operator()(Is<Shape::Boolean>) const {
        return whole.count == 1 && !whole.longForm && number(*whole.octets);
    }
    bool operator()(Is<Shape::Unsigned16>) const {
        return whole.count - 1 < 2 && !whole.longForm && number(unsignedOctets());
    }
    bool operator()(Is<Shape::Integer>) const {
        return whole.count - 1 < 4 && number(static_cast<int>(signedOctets()));
    }
    bool operator()(Is<Shape::Unsigned>) const {
        return whole.count - 1 < 4 && number(unsignedOctets());
    }
    bool operator()(Is<Shape::Enumerated>) const {
        return whole.count - 1 < 4 && number(signedOctets());
    }
    bool operator()(Is<Shape::BigInteger>) const { return octets(whole.octets, whole.count); }
    bool operator()(Is<Shape::BigUnsigned>) const { return octets(whole.octets, whole.count); }
    bool operator()(Is<Shape::Null>) const { return false; }
    bool operator()(Is<Shape::ObjectIdentifier>) const {
        constexpr unsigned fewest =
            ASN1MaxSubIds - 1; // octets that more arcs than there are room for take
        if (whole.count == 0 || whole.count >= fewest) {
            return false;
        }
        value.identifier = &walker.identifier_;
        ASN1Buffer& buffer = walker.ctxt.buffer;
        buffer.byteIndex = static_cast<unsigned>(whole.octets - buffer.data);
        xd_objid(&walker.ctxt, &walker.identifier_, ASN1TagImplicit, static_cast<int>(whole.count));
        return true;
    }
    bool operator()(Is<Shape::OctetString>) const {
        walker.number = whole.count;
        return octets(whole.octets, whole.count);
    }
    bool operator()(Is<Shape::FixedOctetString>) const {
        walker.number = whole.count;
        return whole.count <= type.capacity && octets(whole.octets, whole.count);
    }
    bool operator()(Is<Shape::BitString>) const {
        if (whole.count < 2 || *whole.octets > 7) { // X.690, 8.6.2
            return false;
        }
        walker.number = value.bitCount = (whole.count - 1) * 8 - *whole.octets;
        return octets(whole.octets + 1, whole.count - 1);
    }
    bool operator()(Is<Shape::FixedBitString>) const {
        return whole.count <= type.capacity / 8 + 1 && (*this)(Is<Shape::BitString>());
    }
    bool operator()(Is<Shape::Text>) const {
        const ElementDescription* const element = walker.here->element.element;
        if (type.constraint.count != 0 || (element != nullptr && element->constraint.count != 0)) {
            TextCount text{{}, type.tag == Utf8StringTag};
            TextCount::take(&text, whole.octets, whole.count);
            walker.number = static_cast<unsigned>(text.count.characters);
        }
        return octets(whole.octets, whole.count);
    }
    bool operator()(Is<Shape::Text16>) const { return wideText(2); }
    bool operator()(Is<Shape::Text32>) const { return wideText(4); }
    template <Shape S, class = std::enable_if_t<S == Shape::OpenType || !isPrimitive(S)>>
    bool operator()(Is<S>) const {
        return false;
    }

private:
    bool number(long long read) const {
        value.number = walker.number = read;
        return true;
    }
    unsigned unsignedOctets() const {
        unsigned read = 0;
        for (unsigned i = 0; i < whole.count; ++i) {
            read = read << 8 | whole.octets[i];
        }
        return read;
    }
    unsigned signedOctets() const { // X.690, 8.3.3
        const unsigned read = unsignedOctets();
        return *whole.octets < 0x80 || whole.count == 4 ? read : read | ~0u << 8 * whole.count;
    }
    bool octets(const unsigned char* first, unsigned size) const {
        value.octets = size != 0 ? first : nullptr;
        value.octetCount = size;
        return true;
    }
    bool wideText(unsigned width) const {
        walker.number = whole.count / width;
        return octets(whole.octets, whole.count - whole.count % width);
    }
};

} // namespace asn1data::family

#endif

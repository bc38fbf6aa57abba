#include <brevantis/asn1/runtime/scalar.h>

#include <array>
#include <cstdint>

#include <brevantis/asn1/runtime/tag_length.h>

#include "octet_reader.h"
#include "octet_writer.h"

namespace {

using runtime_detail::fits;
using runtime_detail::octetAt;
using runtime_detail::putOctet;
using runtime_detail::readOwnHeader;
using runtime_detail::record;
using runtime_detail::remaining;
using runtime_detail::takeOctet;

/// Universal tags, which are also their identifier octets in primitive form.
enum : unsigned char { booleanTag = 1, integerTag = 2, nullTag = 5, enumeratedTag = 10 };

/// Adds the universal tag where it is the coder's.
/// @param count octets of contents or the failure of writing them
int completeElement(ASN1CTXT* ctxt, ASN1TagType tagging, ASN1TAG tag, int count) noexcept {
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, tag, count) : count;
}

/// Writes the low octets of a two's complement number, as few as leave a sign bit over.
/// @param magnitude the number, complemented when it is negative
int putNumber(ASN1CTXT* ctxt, std::uint64_t number, std::uint32_t magnitude) noexcept {
    std::array<unsigned char, 5> octets{};
    std::size_t first = octets.size();
    bool signFits = false;
    do {
        octets[--first] = static_cast<unsigned char>(number & 0xFF);
        signFits = magnitude < 0x80;
        number >>= 8;
        magnitude >>= 8;
    } while (!signFits);
    return xe_memcpy(ctxt, &octets[first], static_cast<unsigned int>(octets.size() - first));
}

template <class Number>
int encodeUnsigned(ASN1CTXT* ctxt, const Number* value, ASN1TagType tagging) noexcept {
    if (value == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    return completeElement(ctxt, tagging, integerTag, putNumber(ctxt, *value, *value));
}

/// Reads a header whose length is one octet in any case; a long form shows as 0x80 and above, which
/// the length tests of the types that use this refuse.
int readFixedHeader(ASN1CTXT* ctxt, unsigned char identifierOctet, int* length) noexcept {
    if (remaining(ctxt) == 0 || octetAt(ctxt) != identifierOctet) {
        return record(ctxt, ASN1S_TAG_NOT_FOUND);
    }
    runtime_detail::clearConstructed(ctxt);
    ++ctxt->buffer.byteIndex;
    if (remaining(ctxt) == 0) {
        return record(ctxt, ASN1S_END_OF_BUFFER);
    }
    *length = takeOctet(ctxt);
    return ASN1S_SUCCESS;
}

} // namespace

int xe_boolean(ASN1CTXT* ctxt, unsigned char* value, ASN1TagType tagging) noexcept {
    if (value == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    const unsigned char octet = *value != 0 ? 0xFF : 0;
    return completeElement(ctxt, tagging, booleanTag, putOctet(ctxt, octet));
}

int xd_boolean(ASN1CTXT* ctxt, unsigned char* value, ASN1TagType tagging, int length) noexcept {
    if (tagging == ASN1TagExplicit) {
        const int status = readFixedHeader(ctxt, booleanTag, &length);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    }
    if (length != 1) { // X.690, 8.2.1
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    if (remaining(ctxt) == 0) {
        return record(ctxt, ASN1S_END_OF_BUFFER);
    }
    // Kept: the octet as it came, not 1. Programs depend on it.
    *value = takeOctet(ctxt); // X.690, 8.2.2: any octet but 0, as BER encoders choose it
    return ASN1S_SUCCESS;
}

int xe_integer(ASN1CTXT* ctxt, int* value, ASN1TagType tagging) noexcept {
    if (value == nullptr) {
        return ASN1S_BAD_VALUE;
    }
    const auto number = static_cast<std::uint32_t>(*value);
    const std::uint32_t magnitude = *value < 0 ? ~number : number;
    return completeElement(ctxt, tagging, integerTag, putNumber(ctxt, number, magnitude));
}

int xd_integer(ASN1CTXT* ctxt, int* value, ASN1TagType tagging, int length) noexcept {
    if (const int status = readOwnHeader(ctxt, integerTag, tagging, &length)) {
        return status;
    }
    if (static_cast<unsigned int>(length) > 4) {
        return record(ctxt, ASN1S_VALUE_TOO_BIG);
    }
    if (length == 0) { // X.690, 8.3.1: one octet or more
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    if (!fits(ctxt, length)) {
        return record(ctxt, ASN1S_END_OF_BUFFER);
    }
    // Redundant leading octets (against X.690, 8.3.2) are tolerated: encoders that write a machine
    // word as it is produce them.
    std::uint32_t number = (octetAt(ctxt) & 0x80) != 0 ? 0xFFFFFFFF : 0;
    for (int i = 0; i < length; ++i) {
        number = (number << 8) | takeOctet(ctxt);
    }
    *value = static_cast<int>(number);
    return ASN1S_SUCCESS;
}

int xe_unsigned(ASN1CTXT* ctxt, unsigned int* value, ASN1TagType tagging) noexcept {
    return encodeUnsigned(ctxt, value, tagging);
}

int xd_unsigned(ASN1CTXT* ctxt, unsigned int* value, ASN1TagType tagging, int length) noexcept {
    if (const int status = readOwnHeader(ctxt, integerTag, tagging, &length)) {
        return status;
    }
    if (static_cast<unsigned int>(length) > 5) {
        return record(ctxt, ASN1S_VALUE_TOO_BIG);
    }
    if (length == 5 && remaining(ctxt) != 0 && octetAt(ctxt) != 0) {
        return record(ctxt, ASN1S_VALUE_TOO_BIG);
    }
    // Kept: the sign bit counts as value, as encoders write that forget the leading zero octet of
    // X.690, 8.3.3, and no octets at all are 0. Programs depend on both.
    std::uint32_t number = 0;
    int status = ASN1S_SUCCESS;
    for (int i = 0; i < length; ++i) {
        if (remaining(ctxt) == 0) {
            status = ASN1S_END_OF_BUFFER;
            break;
        }
        number = (number << 8) | takeOctet(ctxt);
    }
    *value = number;
    return status;
}

int xe_uint16(ASN1CTXT* ctxt, unsigned short* value, ASN1TagType tagging) noexcept {
    return encodeUnsigned(ctxt, value, tagging);
}

int xd_uint16(ASN1CTXT* ctxt, unsigned short* value, ASN1TagType tagging, int length) noexcept {
    if (tagging == ASN1TagExplicit) {
        // Kept: a definite message has no room for less than a whole element, and programs depend
        // on this status in front of any other; in an indefinite one its end-of-contents octets may
        // follow, which are another tag rather than a cut.
        constexpr int smallestElement = 3;
        if ((ctxt->flags & ASN1F_INDEF_MESSAGE) == 0 && !fits(ctxt, smallestElement)) {
            return record(ctxt, ASN1S_END_OF_BUFFER);
        }
        const int status = readFixedHeader(ctxt, integerTag, &length);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    }
    if (static_cast<unsigned int>(length) > 3) {
        return record(ctxt, ASN1S_VALUE_TOO_BIG);
    }
    if (length == 3) {
        if (remaining(ctxt) == 0) {
            return record(ctxt, ASN1S_END_OF_BUFFER);
        }
        if (takeOctet(ctxt) != 0) {
            return record(ctxt, ASN1S_VALUE_TOO_BIG);
        }
    }
    // Kept: a length of 0 takes one octet all the same. Programs depend on the position behind it.
    const int width = length >= 2 ? 2 : 1;
    if (!fits(ctxt, width)) {
        return record(ctxt, ASN1S_END_OF_BUFFER);
    }
    unsigned int number = takeOctet(ctxt);
    if (width == 2) {
        number = (number << 8) | takeOctet(ctxt);
    }
    *value = static_cast<unsigned short>(number);
    return ASN1S_SUCCESS;
}

int xe_enum(ASN1CTXT* ctxt, int* value, ASN1TagType tagging) noexcept {
    return completeElement(ctxt, tagging, enumeratedTag, xe_integer(ctxt, value, ASN1TagImplicit));
}

int xd_enum(ASN1CTXT* ctxt, int* value, ASN1TagType tagging, int length) noexcept {
    if (tagging == ASN1TagExplicit) {
        // Kept: nothing is recorded and the form flag stays, unlike with the other numbers.
        // Programs depend on what the context tells afterwards.
        if (remaining(ctxt) == 0 || octetAt(ctxt) != enumeratedTag) {
            return ASN1S_TAG_NOT_FOUND;
        }
        ++ctxt->buffer.byteIndex;
        const int status = runtime_detail::readLength(ctxt, &length);
        if (status != ASN1S_SUCCESS) {
            return status;
        }
    }
    return xd_integer(ctxt, value, ASN1TagImplicit, length);
}

int xe_null(ASN1CTXT* ctxt, ASN1TagType tagging) noexcept {
    return completeElement(ctxt, tagging, nullTag, 0);
}

int xd_null(ASN1CTXT* ctxt, ASN1TagType tagging) noexcept {
    // Kept: contents behind an implicit tag are not looked at, nor is their length.
    if (tagging != ASN1TagExplicit) {
        return ASN1S_SUCCESS;
    }
    int length = 0;
    const int status = readFixedHeader(ctxt, nullTag, &length);
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    return length == 0 ? ASN1S_SUCCESS : record(ctxt, ASN1S_INVALID_LENGTH); // X.690, 8.8.2
}

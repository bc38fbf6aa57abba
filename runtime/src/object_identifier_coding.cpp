#include <brevantis/asn1/runtime/object_identifier_coding.h>

#include <climits>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/tag_length.h>

#include "octet_reader.h"

using namespace runtime_detail;

namespace {

constexpr unsigned char objectIdentifierTag = 6;

/// Reads one base-128 number (X.690, 8.19.2) that ends by @p end at the latest.
/// @param at moves behind the number; in front of @p end
inline unsigned int readNumber(const unsigned char*& at, const unsigned char* end) noexcept {
    // Kept: high bits are lost, and a number may lack its last octet. Programs depend on the arcs
    // that come of it.
    unsigned int number = 0;
    while (at != end) {
        const unsigned int octet = *at++;
        number = number << 7 | (octet & 0x7FU);
        if (octet < 0x80) {
            break;
        }
    }
    return number;
}

/// Writes the number for the first two arcs (X.690, 8.19.4). Under a first arc of 2 the sum can
/// exceed the 32 bits of an arc; its form is five octets at most either way.
int writeFirstNumber(ASN1CTXT* ctxt, unsigned int first, unsigned int second) noexcept {
    const unsigned long long number = first * 40ULL + second;
    if (number <= UINT_MAX) {
        return xe_identifier(ctxt, static_cast<unsigned int>(number));
    }
    unsigned char octets[5];
    for (int i = 0; i < 5; ++i) {
        octets[i] =
            static_cast<unsigned char>((number >> (28 - 7 * i) & 0x7F) | (i < 4 ? 0x80 : 0));
    }
    return xe_memcpy(ctxt, octets, sizeof octets);
}

/// Writes one base-128 number in front of @p next.
/// @return its first octet
inline unsigned char* putNumber(unsigned char* next, unsigned int number) noexcept {
    if (number < 0x80) { // most arcs
        *--next = static_cast<unsigned char>(number);
        return next;
    }
    *--next = static_cast<unsigned char>(number & 0x7FU);
    while ((number >>= 7) != 0) {
        *--next = static_cast<unsigned char>(number | 0x80U);
    }
    return next;
}

/// Writes all numbers straight into the buffer where it has room for the longest that they can be.
/// @return the octets written, 0 where there may be too little room
int writeInPlace(ASN1CTXT* ctxt, const ASN1OBJID& value) noexcept {
    constexpr unsigned int longestNumber = 5;
    ASN1Buffer& buffer = ctxt->buffer;
    const unsigned long long first = value.subid[0] * 40ULL + value.subid[1];
    if (buffer.byteIndex < value.numids * longestNumber || first > UINT_MAX) {
        return 0;
    }
    unsigned char* const end = buffer.data + buffer.byteIndex;
    unsigned char* next = end;
    for (const unsigned int* arc = value.subid + value.numids; arc != value.subid + 2;) {
        next = putNumber(next, *--arc);
    }
    next = putNumber(next, static_cast<unsigned int>(first));
    const auto count = static_cast<unsigned int>(end - next);
    buffer.byteIndex -= count;
    return static_cast<int>(count);
}

/// Moves behind the contents octets.
/// @return 0, or a status of xd_objid
int takeNumbers(ASN1CTXT* ctxt, ASN1TagType tagging, int length, WholeContents* contents) noexcept {
    if (const int status = readOwnHeader(ctxt, objectIdentifierTag, tagging, &length)) {
        return status;
    }
    if (length < 1) { // X.690, 8.19.2: at least one number
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    if (!fits(ctxt, length)) {
        return record(ctxt, ASN1S_END_OF_BUFFER);
    }
    *contents = {ctxt->buffer.data + ctxt->buffer.byteIndex, static_cast<unsigned int>(length)};
    ctxt->buffer.byteIndex += contents->count;
    return ASN1S_SUCCESS;
}

} // namespace

int xd_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging, int length) noexcept {
    WholeContents contents{};
    if (const int status = takeNumbers(ctxt, tagging, length, &contents)) {
        return status;
    }
    const unsigned char* at = contents.octets;
    const unsigned char* const end = at + contents.count;
    const unsigned int first = readNumber(at, end);
    value->subid[0] = first < 80 ? first / 40 : 2; // X.690, 8.19.4
    value->subid[1] = first < 80 ? first % 40 : first - 80;
    unsigned int* arc = value->subid + 2;
    const unsigned int* const room = value->subid + ASN1MaxSubIds;
    while (at != end && arc != room) {
        const unsigned int octet = *at;
        if (octet < 0x80) { // most arcs
            ++at;
            *arc++ = octet;
        } else {
            *arc++ = readNumber(at, end);
        }
    }
    value->numids = static_cast<unsigned int>(arc - value->subid);
    if (at != end) {
        ctxt->buffer.byteIndex -= static_cast<unsigned int>(end - at);
        return ASN1S_INVALID_OBJID;
    }
    return ASN1S_SUCCESS;
}

int xe_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging) noexcept {
    if (value == nullptr || value->numids < 2 || value->numids > ASN1MaxSubIds ||
        value->subid[0] > 2 || (value->subid[0] != 2 && value->subid[1] > 39)) {
        return ASN1S_INVALID_OBJID;
    }
    int count = writeInPlace(ctxt, *value);
    for (unsigned int i = count == 0 ? value->numids : 0; i-- > 1;) {
        const int written = i > 1 ? xe_identifier(ctxt, value->subid[i])
                                  : writeFirstNumber(ctxt, value->subid[0], value->subid[1]);
        if (written < 0) {
            return written;
        }
        count += written;
    }
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, objectIdentifierTag, count) : count;
}

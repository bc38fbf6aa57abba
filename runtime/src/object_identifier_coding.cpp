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

/// Writes the number for the first two arcs (X.690 8.19.4). Under a first arc of 2 the sum can
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

} // namespace

int xd_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging, int length) noexcept {
    if (tagging == ASN1TagExplicit) {
        if (const int status = readExplicitHeader(ctxt, objectIdentifierTag, &length)) {
            return status;
        }
    }
    if (length < 1) { // X.690 8.19.2: at least one number
        return record(ctxt, ASN1S_INVALID_LENGTH);
    }
    if (!fits(ctxt, length)) {
        return record(ctxt, ASN1S_END_OF_BUFFER);
    }
    const unsigned char* at = ctxt->buffer.data + ctxt->buffer.byteIndex;
    const unsigned char* const end = at + length;
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
    ctxt->buffer.byteIndex = static_cast<unsigned int>(at - ctxt->buffer.data);
    return at == end ? int{ASN1S_SUCCESS} : int{ASN1S_INVALID_OBJID};
}

int xe_objid(ASN1CTXT* ctxt, ASN1OBJID* value, ASN1TagType tagging) noexcept {
    if (value == nullptr || value->numids < 2 || value->numids > ASN1MaxSubIds ||
        value->subid[0] > 2 || (value->subid[0] != 2 && value->subid[1] > 39)) {
        return ASN1S_INVALID_OBJID;
    }
    int count = 0;
    for (unsigned int i = value->numids; i-- > 1;) {
        const int written = i > 1 ? xe_identifier(ctxt, value->subid[i])
                                  : writeFirstNumber(ctxt, value->subid[0], value->subid[1]);
        if (written < 0) {
            return written;
        }
        count += written;
    }
    return tagging == ASN1TagExplicit ? xe_tag_len(ctxt, objectIdentifierTag, count) : count;
}

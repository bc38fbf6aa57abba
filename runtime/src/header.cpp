#include <brevantis/asn1/runtime/header.h>

#include "header_octets.h"

using runtime_detail::OctetReader;

int rtReadHeader(const unsigned char* octets, unsigned int count, ASN1Header* header) noexcept {
    OctetReader reader{octets, 0, count};
    ASN1Header read{};
    if (const int status = runtime_detail::readTagOctets(reader, &read.tag)) {
        return status;
    }
    read.tagSize = reader.place;
    if (const int status = runtime_detail::readLengthOctets(reader, &read.length)) {
        return status;
    }
    // X.690, 8.1.3.2: an indefinite length is for constructed encodings only.
    const bool indefinite = read.length == ASN1IndefiniteLength;
    if (indefinite ? (read.tag & ASN1TagConstructed) == 0 : read.length < 0) {
        return ASN1S_INVALID_LENGTH;
    }
    read.size = reader.place;
    *header = read;
    return ASN1S_SUCCESS;
}

unsigned int rtWriteHeader(ASN1TAG tag, int length, unsigned char* octets) noexcept {
    unsigned char* next = octets;
    *next++ = rtIdentifierOctet(tag);
    for (unsigned int rest = rtTagSize(tag) - 1; rest-- != 0;) { // X.690, 8.1.2.4.2
        const ASN1TAG bits = (tag & ASN1TagNumberMask) >> 7 * rest;
        *next++ = static_cast<unsigned char>((bits & 0x7FU) | (rest != 0 ? 0x80U : 0U));
    }
    if (length == ASN1IndefiniteLength) {
        *next++ = 0x80;
    } else {
        const unsigned int count = rtLengthSize(length) - 1;
        if (count != 0) {
            *next++ = static_cast<unsigned char>(0x80U | count);
        }
        for (unsigned int rest = count != 0 ? count : 1; rest-- != 0;) {
            *next++ = static_cast<unsigned char>(static_cast<unsigned int>(length) >> 8 * rest);
        }
    }
    return static_cast<unsigned int>(next - octets);
}

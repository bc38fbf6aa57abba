#include <brevantis/asn1/runtime/value_copy.h>

#include <cstring>

#include "heap_block.h"

using runtime_detail::copyBlock;
using runtime_detail::octetsOfBits;

namespace {

/// Copies into the caller's array. Callers that copy optional content rely on 0 for an empty one.
int copyToArray(unsigned int count, std::size_t octets, const unsigned char* source,
                unsigned int* targetCount, unsigned char* target) noexcept {
    if (source == nullptr || targetCount == nullptr || target == nullptr) {
        return 0;
    }
    *targetCount = count;
    // Kept: 0, as for a failure.
    if (count == 0) {
        return 0;
    }
    std::memmove(target, source, octets);
    return 1;
}

template <std::size_t width>
std::size_t octetsOfUnits(unsigned int count) noexcept {
    return width * count;
}

/// Copies a record of a count and a pointer.
/// @param count the record's member that counts
/// @param octetsOf what a count takes in memory
template <class Record, class OctetsOf>
int copyRecord(ASN1CTXT* ctxt, const Record* source, Record* target, unsigned int Record::*count,
               OctetsOf octetsOf) noexcept {
    if (source == nullptr || target == nullptr) {
        return 0;
    }
    Record copy{source->*count, nullptr};
    if (const std::size_t octets = octetsOf(copy.*count); octets != 0) {
        copy.data = copyBlock(ctxt, source->data, octets);
        if (copy.data == nullptr) {
            *target = {0, nullptr};
            return 0;
        }
    }
    *target = copy;
    return 1;
}

} // namespace

int rtCopyBitStr(ASN1CTXT* /*ctxt*/, unsigned int numbits, const unsigned char* source,
                 unsigned int* targetBits, unsigned char* target) noexcept {
    return copyToArray(numbits, octetsOfBits(numbits), source, targetBits, target);
}

int rtCopyOctStr(ASN1CTXT* /*ctxt*/, unsigned int numocts, const unsigned char* source,
                 unsigned int* targetOctets, unsigned char* target) noexcept {
    return copyToArray(numocts, numocts, source, targetOctets, target);
}

int rtCopyDynBitStr(ASN1CTXT* ctxt, const ASN1TDynBitStr* source, ASN1TDynBitStr* target) noexcept {
    return copyRecord(ctxt, source, target, &ASN1TDynBitStr::numbits, octetsOfBits);
}

int rtCopyDynOctStr(ASN1CTXT* ctxt, const ASN1TDynOctStr* source, ASN1TDynOctStr* target) noexcept {
    return copyRecord(ctxt, source, target, &ASN1TDynOctStr::numocts, octetsOfUnits<1>);
}

int rtCopyCharStr(ASN1CTXT* ctxt, const char* source, const char** target) noexcept {
    if (ctxt == nullptr || source == nullptr || target == nullptr) {
        return 0;
    }
    *target = copyBlock(ctxt, source, std::strlen(source) + 1);
    return *target != nullptr ? 1 : 0;
}

int rtCopy16BitCharStr(ASN1CTXT* ctxt, const Asn116BitCharString* source,
                       Asn116BitCharString* target) noexcept {
    return copyRecord(ctxt, source, target, &Asn116BitCharString::nchars, octetsOfUnits<2>);
}

int rtCopy32BitCharStr(ASN1CTXT* ctxt, const Asn132BitCharString* source,
                       Asn132BitCharString* target) noexcept {
    return copyRecord(ctxt, source, target, &Asn132BitCharString::nchars, octetsOfUnits<4>);
}

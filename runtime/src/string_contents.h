#ifndef BREVANTIS_ASN1_RUNTIME_SRC_STRING_CONTENTS_H
#define BREVANTIS_ASN1_RUNTIME_SRC_STRING_CONTENTS_H

#include <climits>

#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// The road that the decoders of all string types share: what stands between the header and the
/// contents octets, and how a string of indefinite length ends.

namespace runtime_detail {

/// What is known of a string once its header has been read.
struct StringContents {
    bool constructed;
    bool closesItself; ///< constructed and of indefinite length
    int length;        ///< contents octets, the headers of segments included
    int dataLength;    ///< room that the value can take; for an indefinite length without headers
};

/// Reads the header of a string with ASN1TagExplicit, and measures one of indefinite length.
/// @param identifierOctet identifier octet of the type; the form bit does not count
/// @param segmentTag tag of the segments of a constructed form
/// @param length with ASN1TagImplicit the length that the caller read
/// @return 0, or a failure of xd_match1 or xd_consStrIndefLenAndSize, recorded
int openString(ASN1CTXT* ctxt, unsigned char identifierOctet, ASN1TAG segmentTag,
               ASN1TagType tagging, int length, StringContents* contents) noexcept;

/// Takes the end-of-contents octets that a string of indefinite length owns.
/// @return 0; -5, recorded, when they are not there
int closeString(ASN1CTXT* ctxt, const StringContents& contents) noexcept;

/// Reads contents octets of definite length: OCTET STRING segments where ASN1F_CONSTRUCTED is set.
/// @param target room for @p room octets
/// @param count receives the octets read, after a failure too
/// @return 0, or a status of xd_octstr_s, recorded
int readOctets(ASN1CTXT* ctxt, unsigned char* target, unsigned int room, int length,
               unsigned int* count) noexcept;

/// Takes a block from the context's heap; null when memory is out or no block can be that large.
inline unsigned char* allocateOctets(ASN1CTXT* ctxt, long long count) noexcept {
    return count > INT_MAX ? nullptr
                           : static_cast<unsigned char*>(
                                 rtMemHeapAlloc(&ctxt->memHeap, static_cast<int>(count)));
}

} // namespace runtime_detail

#endif

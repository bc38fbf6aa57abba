#ifndef BREVANTIS_ASN1_RUNTIME_DER_ORDER_H
#define BREVANTIS_ASN1_RUNTIME_DER_ORDER_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>

/// @file
/// Release of an encode buffer, positions in it, and the order of a SET OF.

/// Where an encoded element stands in the buffer, counted from its end so that growth does not
/// matter.
struct Asn1BufLocDescr {
    int numocts; ///< length of the element in octets
    int offset;  ///< distance of its first octet from the last, unused octet of the buffer
};

/// Gives a buffer that came from the heap back to it; a caller-owned one is left alone. Until the
/// next binding every write fails with ASN1S_BUFFER_OVERFLOW.
BREVANTIS_ASN1_API void xe_free(ASN1CTXT* ctxt) noexcept;

/// Describes the element that has just been completed.
/// @param length its octets, as its encoder returned them
BREVANTIS_ASN1_API void xe_getBufLocDescr(ASN1CTXT* ctxt, unsigned int length,
                                          Asn1BufLocDescr* descr) noexcept;

/// Puts the members of a SET OF into ascending order of their encodings (X.690, 11.6).
///
/// Members already in order stay where they are. Equal members keep their order. The time grows
/// with n log n comparisons, so that a hostile set costs no more than its size.
/// @param list one Asn1BufLocDescr* for each member, descriptors from the heap of @p ctxt, in the
///        order of encoding; the members are the last octets written, without gaps. On success
///        descriptors and nodes are freed and the list is empty
/// @return the members' octets, 0 for an empty list; ASN1S_NO_MEMORY, list and octets untouched,
///         when memory is out
BREVANTIS_ASN1_API int xe_derCanonicalSort(ASN1CTXT* ctxt, Asn1RTSList* list) noexcept;

#endif

#ifndef BREVANTIS_ASN1_RUNTIME_OPEN_TYPE_H
#define BREVANTIS_ASN1_RUNTIME_OPEN_TYPE_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Open types: values of a type that the runtime does not know, carried as whole encoded elements.

struct ASN1CTXT;

/// Takes the element at the position, whatever it is.
/// @param data receives the element, header included: a block of the context's heap or, with
///        ASN1F_NO_COPY, a pointer into the message, which must then outlive the value
/// @param numocts receives the size of the element in octets. Where the message has no element
///        left, nor a whole header, both arguments stay as they were and the call succeeds: the
///        way in which an optional open type is absent
/// @return 0, or a status: ASN1S_BAD_VALUE for an element past the end of the message or
///         end-of-contents octets in place of one, ASN1S_NO_MEMORY when memory is out,
///         ASN1S_INVALID_LENGTH for a malformed length, ASN1S_BAD_TAG for a tag number that is too
///         big. An element of indefinite length that the message cuts off is a success
BREVANTIS_ASN1_API int xd_OpenType(ASN1CTXT* ctxt, const unsigned char** data,
                                   unsigned int* numocts) noexcept;

/// Appends the element at the position to a list of ASN1OpenType. Node and element come from the
/// context's heap as one block; a failed call leaves that block in the heap.
/// @param list null steps over the element instead
/// @return 0, or a status recorded in the context: as for xd_OpenType and, with a null @p list, as
///         for xd_NextElement; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xd_OpenTypeAppend(ASN1CTXT* ctxt, Asn1RTDList* list) noexcept;

/// Collects the elements between known members of an extensible type.
/// @param scope bounds of the type that holds them
/// @param stopTag tag of the next known member, which is left at the position; ASN1TagNone collects
///        to the end of the scope
/// @param list null drops the elements
/// @return 0, or a status: ASN1S_END_OF_BUFFER, recorded, when the scope ends before @p stopTag or
///         no header can be read any more; otherwise as for xd_OpenTypeAppend (recorded) and
///         xd_match (not recorded)
BREVANTIS_ASN1_API int xd_OpenTypeExt(ASN1CTXT* ctxt, ASN1ElementScope* scope, ASN1TAG stopTag,
                                      Asn1RTDList* list) noexcept;

/// Writes the first element of stored octets. What stands behind it is dropped. An element of
/// indefinite length goes out as it is.
/// @param data the octets. When they are the current write position, they count as written already;
///        elsewhere in the context's own buffer they must not lie
/// @param numocts octets in @p data; 0 writes nothing
/// @return octets of the element; 0 for @p numocts 0; ASN1S_BAD_VALUE for a null @p data;
///         ASN1S_END_OF_BUFFER or ASN1S_INVALID_LENGTH when the element does not end within
///         @p numocts, and the other statuses of reading a header; ASN1S_BUFFER_OVERFLOW when a
///         caller-owned buffer is full; ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xe_OpenType(ASN1CTXT* ctxt, const unsigned char* data,
                                   unsigned int numocts) noexcept;

/// Writes a list of ASN1OpenType, so that the elements stand in list order.
/// @param list null and empty write nothing
/// @return octets written, or a status of xe_OpenType, recorded in the context
BREVANTIS_ASN1_API int xe_OpenTypeExt(ASN1CTXT* ctxt, Asn1RTDList* list) noexcept;

/// Copies an open type; the octets go to a block of the context's heap.
/// @param target `data` is null for an empty value and after a failure
/// @return 1; 0 when an argument is null, @p source has a count but no octets, or memory is out
BREVANTIS_ASN1_API int rtCopyOpenType(ASN1CTXT* ctxt, const ASN1OpenType* source,
                                      ASN1OpenType* target) noexcept;

/// Copies a list of ASN1OpenType into the context's heap.
/// @param target overwritten, not freed
/// @return 1; 0 when an argument is null or memory is out, the elements before that having been
///         copied
BREVANTIS_ASN1_API int rtCopyOpenTypeExt(ASN1CTXT* ctxt, const Asn1RTDList* source,
                                         Asn1RTDList* target) noexcept;

/// Frees a list of ASN1OpenType with its elements and their octets and makes it empty. Where the
/// context has ASN1F_NO_COPY set, the octets are left to the message or the heap that they lie in.
/// @param list null is ignored; otherwise made in the heap of @p ctxt
BREVANTIS_ASN1_API void rtMemFreeOpenSeqExt(ASN1CTXT* ctxt, Asn1RTDList* list) noexcept;

#endif

#ifndef BREVANTIS_ASN1_VALUES_CMP_INFO_TYPE_AND_VALUE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_INFO_TYPE_AND_VALUE_TRAITS_H

#include <brevantis/asn1/asn1data/cmp.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/values/cmp/info_type_and_value.h>

/// @file
/// Lists of InfoTypeAndValue (RFC 4210, 5.3.19). A list is an ASN1TSeqOfList, or any other form of
/// it, of ASN1T_InfoTypeAndValue records.

namespace Brevantis::ASN1 {

/// Replaces the items of @p target by those of a list. A failure leaves @p target with the items in
/// front of it.
/// @throws ATL::CAtlException with E_INVALIDARG for a node without a record, or a value with a
///         count but no octets
BREVANTIS_ASN1_API void ASN1TavList_Parse(const _Asn1RTDList& source,
                                          CInfoTypeAndValueList& target);

/// Appends records for the items to a list. A failure leaves the records in front of it there.
/// @param owner its context gives the heap that nodes and records lie on
/// @throws ATL::CAtlException with E_INVALIDARG for a type that is no object identifier, with
///         CRYPT_E_ASN1_INTERNAL for the value of a known type that does not decode, with
///         CRYPT_E_ASN1_MEMORY when memory is out
BREVANTIS_ASN1_API void ASN1TavList_Encode(const CInfoTypeAndValueList& source,
                                           _Asn1RTDList& target, ASN1BERDecodeBuffer& owner);

} // namespace Brevantis::ASN1

#endif

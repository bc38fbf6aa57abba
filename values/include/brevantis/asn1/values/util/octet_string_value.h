#ifndef BREVANTIS_ASN1_VALUES_UTIL_OCTET_STRING_VALUE_H
#define BREVANTIS_ASN1_VALUES_UTIL_OCTET_STRING_VALUE_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// OCTET STRING (X.690, 8.7) around a value's octets.

namespace Brevantis::ASN1 {

/// The DER of an OCTET STRING.
/// @param octets its content
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when a context cannot be set up, with
///         CRYPT_E_ASN1_INTERNAL when the encoder fails
BREVANTIS_ASN1_API CBlob toOctetString(const CBlob& octets);

/// The content of an OCTET STRING.
/// @param encoding in primitive form; octets behind the string are not looked at
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when a context cannot be set up, with
///         CRYPT_E_ASN1_INTERNAL when @p encoding is none
BREVANTIS_ASN1_API CBlob fromOctetString(const CBlob& encoding);

} // namespace Brevantis::ASN1

#endif

#ifndef BREVANTIS_ASN1_VALUES_UTIL_ONE_ELEMENT_H
#define BREVANTIS_ASN1_VALUES_UTIL_ONE_ELEMENT_H

#include <brevantis/asn1/export.h>
#include <brevantis/support/blob.h>

/// @file
/// Octets that stand for a value.
///
/// Where a value class takes the encoding of a value that it need not know, as CAttribute::add,
/// CContentInfo::put_content and CAlgorithmIdentifier::put_parameters do, its `encode` writes the
/// first element of the octets and drops what stands behind it. Who takes octets from strangers and
/// has to know that none gets lost asks isOneElement first.

namespace Brevantis::ASN1 {

/// Whether octets are one complete element (X.690, 8.1.1) and nothing else: identifier, length and
/// contents, of any class and form, with a tag number below 2^29 and a length in at most four
/// octets, definite or indefinite. What the contents of a definite form hold is not looked at.
/// @return false also for no octets, for an element that is cut off, and for end-of-contents octets
///         alone
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
BREVANTIS_ASN1_API bool isOneElement(const CBlob& octets);

} // namespace Brevantis::ASN1

#endif

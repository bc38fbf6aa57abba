#ifndef BREVANTIS_ASN1_VALUES_TYPES_BIG_INTEGER_TEXT_H
#define BREVANTIS_ASN1_VALUES_TYPES_BIG_INTEGER_TEXT_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/values/types/big_integer.h>
#include <brevantis/support/blob.h>

/// @file
/// Big integers and the text that the catalogue's records hold them as: "0x" and hexadecimal
/// digits, two for each octet.

namespace Brevantis::ASN1 {

/// Reads the text.
/// @param text in lower-case "0x", digits of either case behind it. An odd count of digits is taken
///        when the first one is 0
/// @param value stays as it was on failure
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for null, another prefix or no digits,
/// with
///         E_INVALIDARG for another odd count of digits or a character that is none
BREVANTIS_ASN1_API void StringToBigInteger(const char* text, CBigInteger& value);

/// Writes the text, with lower-case digits.
/// @param text receives the text and its terminator, which `cbData` counts
BREVANTIS_ASN1_API void BigIntegerToString(const CBigInteger& value, CBlob& text);

/// The same as StringToBigInteger.
BREVANTIS_ASN1_API void ASN1StringToBigInteger(const char* text, CBigInteger& value);

/// The text of BigIntegerToString in a block of the context's heap, which lives as long as that.
/// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
BREVANTIS_ASN1_API const char* BigIntegerToASN1String(ASN1CTXT* ctxt, const CBigInteger& value);

/// The text of a 32-bit number, always eight digits, in a block of the context's heap.
/// @throws ATL::CAtlException with E_OUTOFMEMORY when memory is out
BREVANTIS_ASN1_API const char* DWORDToASN1BigInteger(ASN1CTXT* ctxt, unsigned int value);

/// Folds the octets of a text of at most four into a number.
/// @warning The weight of an octet is 11 times that of the next, not 256 times: only numbers below
///          256 come back from the text of DWORDToASN1BigInteger. "0x00000102" gives 13.
/// @throws ATL::CAtlException with E_INVALIDARG for more than four octets, and as
///         StringToBigInteger
BREVANTIS_ASN1_API unsigned int ASN1BigIntegerToDWORD(const char* text);

} // namespace Brevantis::ASN1

#endif

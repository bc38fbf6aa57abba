#ifndef BREVANTIS_ASN1_VALUES_CMP_FREE_TEXT_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_FREE_TEXT_TRAITS_H

#include <brevantis/asn1/asn1data/cmp.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/free_text.h>

/// @file
/// PKIFreeText (RFC 4210, 5.1.1) with language tags inside the text. A tag is U+0E01, then for each
/// of its characters c the code point U+0E00 + c, then U+0E7E; the text follows directly. Other
/// implementations take these characters for Thai letters.

namespace Brevantis::ASN1 {

/// Fills a record from a text. A string in CLanguageTagDefaultRead goes without a tag, any other,
/// the empty tag included, with its tag in front.
/// @param ctxt gives the heap that the strings lie on
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for a character, of the text or the tag,
///         that has no UTF-8 form, with CRYPT_E_ASN1_MEMORY when memory is out
BREVANTIS_ASN1_API void CPKIFreeText_Encode(ASN1CTXT* ctxt, asn1data::ASN1T_PKIFreeText& record,
                                            const CPKIFreeText& text);

/// Appends the strings of a record to a text, or none on failure.
/// @warning The text of a string with a tag begins with the characters of the tag, which is read as
///          its language as well. Written again it has two tags in front.
/// @param ctxt not used, may be null
/// @throws ATL::CAtlException with CRYPT_E_ASN1_UTF8 for a string that is no UTF-8, with
///         E_INVALIDARG for one that begins with U+0E01 but not with a whole tag and for a count
///         without an array; a null string in the array is the empty one
BREVANTIS_ASN1_API void CPKIFreeText_Parse(ASN1CTXT* ctxt, CPKIFreeText& text,
                                           const asn1data::ASN1T_PKIFreeText& record);

} // namespace Brevantis::ASN1

#endif

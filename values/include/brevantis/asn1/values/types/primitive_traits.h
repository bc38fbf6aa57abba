#ifndef BREVANTIS_ASN1_VALUES_TYPES_PRIMITIVE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_PRIMITIVE_TRAITS_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>
#include <brevantis/asn1/values/util/coding.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/asn1/values/util/traits.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/date_time.h>
#include <brevantis/support/text.h>

/// @file
/// Traits of the types that the notation itself brings along. Where nothing else is said a failure
/// is ATL::CAtlException with CRYPT_E_ASN1_MEMORY, when memory is out, or with E_INVALIDARG for a
/// record with a count but no octets.

namespace Brevantis::ASN1 {

/// IA5String (X.680, 41) as narrow text.
struct BREVANTIS_ASN1_API ASN1IA5String_traits {
    using ASN1_T = const char*;

    static void set(ASN1CTXT* ctxt, const char*& record, const char* value);
    static void get(const char* const& record, CStringProxy& value);
    /// Mind that @p target then points to the text of @p source itself, not to a copy of it.
    static void copy(ASN1CTXT* ctxt, const char* const& source, const char*& target);
};

/// UTF8String (X.680, 41) as wide text.
struct BREVANTIS_ASN1_API ASN1UTF8String_traits {
    using ASN1_T = const char*;

    /// @throws ATL::CAtlException with E_INVALIDARG for a character that UTF-8 does not code
    static void set(ASN1CTXT* ctxt, const char*& record, const wchar_t* value);
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for text that is no UTF-8
    static void get(const char* const& record, CWStringProxy& value);
    static void copy(ASN1CTXT* ctxt, const char* const& source, const char*& target);
};

/// OCTET STRING.
struct BREVANTIS_ASN1_API ASN1TDynOctStr_traits {
    using ASN1_T = ASN1TDynOctStr;

    static void set(ASN1CTXT* ctxt, ASN1TDynOctStr& record, const CBlob& value);
    static void get(const ASN1TDynOctStr& record, CBlob& value);
    static void copy(ASN1CTXT* ctxt, const ASN1TDynOctStr& source, ASN1TDynOctStr& target);
};

/// BIT STRING as whole octets: `set` leaves no bit of the last octet unused, and `get` drops the
/// count of bits.
struct BREVANTIS_ASN1_API ASN1TDynBitStr_traits {
    using ASN1_T = ASN1TDynBitStr;

    static void set(ASN1CTXT* ctxt, ASN1TDynBitStr& record, const CBlob& value);
    static void get(const ASN1TDynBitStr& record, CBlob& value);
    /// A copy of no bits has null data.
    static void copy(ASN1CTXT* ctxt, const ASN1TDynBitStr& source, ASN1TDynBitStr& target);
};

/// An open type as the complete encoding of its value.
struct BREVANTIS_ASN1_API ASN1TOpenType_traits {
    using ASN1_T = ASN1OpenType;

    static void set(ASN1CTXT* ctxt, ASN1OpenType& record, const CBlob& value);
    static void get(const ASN1OpenType& record, CBlob& value);
    static void copy(ASN1CTXT* ctxt, const ASN1OpenType& source, ASN1OpenType& target);
};

/// The slot of an open value as the complete encoding of that value; its typed form is not touched.
struct BREVANTIS_ASN1_API Asn1TObject_traits {
    using ASN1_T = Asn1Object;

    static void set(ASN1CTXT* ctxt, Asn1Object& record, const CBlob& value);
    static void get(const Asn1Object& record, CBlob& value);
    /// A copy of no octets has null data.
    static void copy(ASN1CTXT* ctxt, const Asn1Object& source, Asn1Object& target);
};

/// OBJECT IDENTIFIER as dotted text.
struct BREVANTIS_ASN1_API ASN1TObjId_traits {
    using ASN1_T = ASN1OBJID;

    /// @param ctxt not used, may be null
    /// @throws ATL::CAtlException with E_INVALIDARG when the text is no identifier
    static void set(ASN1CTXT* ctxt, ASN1OBJID& record, const char* value);
    static void set(ASN1CTXT* ctxt, ASN1OBJID& record, const CStringProxy& value);
    static void get(const ASN1OBJID& record, CStringProxy& value);
    /// @param ctxt not used, may be null
    static void copy(ASN1CTXT* ctxt, const ASN1OBJID& source, ASN1OBJID& target);
    static int encode(ASN1BEREncodeBuffer& buffer, ASN1OBJID& record);
    static int decode(ASN1BERDecodeBuffer& buffer, ASN1OBJID& record);
};

/// GeneralizedTime (X.680, 46) as a calendar time in UTC, cut to whole seconds when it is written.
struct BREVANTIS_ASN1_API ASN1GeneralizedTime_traits {
    using ASN1_T = const char*;

    static void set(ASN1CTXT* ctxt, const char*& record, const CDateTime& value);
    /// @throws ATL::CAtlException with E_INVALIDARG for text that is no generalized time
    static void get(const char* const& record, CDateTime& value);
    /// Parses the text and writes it anew.
    static void copy(ASN1CTXT* ctxt, const char* const& source, const char*& target);
    static int encode(ASN1BEREncodeBuffer& buffer, const char*& record);
    static int decode(ASN1BERDecodeBuffer& buffer, const char*& record);
};

/// The text of a generalized time in a block of the context's heap.
/// @param wholeSeconds drops the milliseconds; they are cut off, never rounded up
BREVANTIS_ASN1_API const char* DateToASN1GeneralizedTime(ASN1CTXT* ctxt, const CDateTime& time,
                                                         bool wholeSeconds);

// Dotted text goes in as a bare pointer and comes out owned.
BREVANTIS_ASN1_ENCODED(ASN1TObjId_traits, const char*)
BREVANTIS_ASN1_DECODED(ASN1TObjId_traits, CStringProxy)
BREVANTIS_ASN1_ENCODED(ASN1GeneralizedTime_traits, CDateTime)

} // namespace Brevantis::ASN1

#endif

#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_SIGNED_ATTRIBUTES_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_SIGNED_ATTRIBUTES_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/types/attr_value.h>
#include <brevantis/asn1/values/types/time_choice.h>
#include <brevantis/asn1/values/util/value_with_field.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/date_time.h>
#include <brevantis/support/text.h>

/// @file
/// Values of the attributes that nearly every signed message has (RFC 5652, 11).
///
/// How field and encoded value agree is told in util/value_with_field.h.

namespace Brevantis::ASN1 {

extern template class ValueWithField<CAttrValue, CStringProxy>;
extern template class ValueWithField<CAttrValue, CBlob>;
extern template class ValueWithField<CAttrValue, CTimeChoice>;

/// contentType, 1.2.840.113549.1.9.3: the type of the content that is signed.
class BREVANTIS_ASN1_API CAttrContentType : public ValueWithField<CAttrValue, CStringProxy> {
public:
    /// @param contentType an object identifier as dotted text
    /// @throws as `encode`
    explicit CAttrContentType(const char* contentType);
    /// @param encoded the DER of an OBJECT IDENTIFIER
    /// @throws as `decode`
    explicit CAttrContentType(const CBlob& encoded);
    CAttrContentType(const CAttrContentType&) = delete;
    CAttrContentType& operator=(const CAttrContentType&) = delete;

    /// @return dotted text, valid until it changes or goes
    const char* get_contentType() const { return field().c_str(); }
    /// @throws as `encode`
    void put_contentType(const char* contentType);
};

/// messageDigest, 1.2.840.113549.1.9.4: the digest of the content.
class BREVANTIS_ASN1_API CAttrMessageDigest : public ValueWithField<CAttrValue, CBlob> {
public:
    /// An empty digest.
    /// @warning The value is empty until `put_messageDigest` or `encode` is called.
    CAttrMessageDigest();
    /// @param encoded the DER of an OCTET STRING, not the digest itself
    /// @throws as `decode`
    explicit CAttrMessageDigest(const CBlob& encoded);
    CAttrMessageDigest(const CAttrMessageDigest&) = delete;
    CAttrMessageDigest& operator=(const CAttrMessageDigest&) = delete;

    /// @return the octets of the digest
    const CBlob& get_messageDigest() const { return field(); }
    /// @throws as `encode`
    void put_messageDigest(const CBlob& messageDigest);
};

/// signingTime, 1.2.840.113549.1.9.5: when the signer says to have signed.
class BREVANTIS_ASN1_API CAttrSigningTime : public ValueWithField<CAttrValue, CTimeChoice> {
public:
    /// @param time encoded as CTimeChoice does, without what lies below a second
    /// @throws as `encode`
    explicit CAttrSigningTime(const CDateTime& time);
    /// @param encoded the DER of a Time
    /// @throws as `decode`
    explicit CAttrSigningTime(const CBlob& encoded);
    CAttrSigningTime(const CAttrSigningTime&) = delete;
    CAttrSigningTime& operator=(const CAttrSigningTime&) = delete;

    /// The time that was set or decoded last.
    CDateTime get_time() const { return *field().get_time(); }
    /// @throws as `encode`
    void put_time(const CDateTime& time);
};

} // namespace Brevantis::ASN1

#endif

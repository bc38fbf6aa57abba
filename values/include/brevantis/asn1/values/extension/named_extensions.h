#ifndef BREVANTIS_ASN1_VALUES_EXTENSION_NAMED_EXTENSIONS_H
#define BREVANTIS_ASN1_VALUES_EXTENSION_NAMED_EXTENSIONS_H

#include <optional>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/extension/extension.h>
#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/util/value_with_field.h>
#include <brevantis/support/date_time.h>

/// @file
/// Extensions whose value is decoded: of entries of a CRL (RFC 5280, 5.3; the hold instruction in
/// RFC 3280, 5.3.2), and the private key usage period (RFC 3280, 4.2.1.4).
///
/// How fields and encoded values agree is told in util/value_with_field.h.

namespace Brevantis::ASN1 {

// Marked, as clang exports no instance of a template for a type that is not.
/// Why a certificate was revoked (CRLReason, RFC 5280, 5.3.1).
enum BREVANTIS_ASN1_API CrlReason : unsigned int {
    CrlReason_unspecified = 0,          ///< none is told; better left out then
    CrlReason_keyCompromise = 1,        ///< others know the subject's private key, or may
    CrlReason_cACompromise = 2,         ///< the same of a certification authority's key
    CrlReason_affiliationChanged = 3,   ///< the subject's name or other facts have changed
    CrlReason_superseded = 4,           ///< another certificate takes its place
    CrlReason_cessationOfOperation = 5, ///< it is not needed any more
    CrlReason_certificateHold = 6,      ///< it may become valid again
    CrlReason_removeFromCRL = 8,        ///< delta lists: it leaves the list again
    CrlReason_privilegeWithdrawn = 9,   ///< a right that it gives was taken away
    CrlReason_aACompromise = 10         ///< the same as 1 of an attribute authority's key
};

extern template class ValueWithField<CExtValue, CrlReason>;
extern template class ValueWithField<CExtValue, CStringProxy>;
extern template class ValueWithField<CExtValue, CDateTime>;
extern template class ValueWithField<CExtValue, CGeneralNames>;

/// reasonCode, 2.5.29.21.
class BREVANTIS_ASN1_API CExtCRLReason : public ValueWithField<CExtValue, CrlReason> {
public:
    /// Reason 0.
    /// @warning The value is empty until `put_reason` or `encode` is called.
    CExtCRLReason();
    /// @throws as `encode`
    explicit CExtCRLReason(CrlReason reason);
    /// @param value the DER of a CRLReason
    /// @throws as `decode`
    explicit CExtCRLReason(const CBlob& value);

    /// The reason; 0 until one is set or decoded. One that was decoded may be a number without a
    /// name.
    CrlReason get_reason() const;
    /// @throws as `encode`
    void put_reason(CrlReason reason);
};

/// instructionCode, 2.5.29.23: what to do about a certificate on hold.
class BREVANTIS_ASN1_API CExtHoldInstructionCode : public ValueWithField<CExtValue, CStringProxy> {
public:
    /// An empty code.
    /// @warning The value is empty until `put_code` is called.
    CExtHoldInstructionCode();
    /// @param code an object identifier as dotted text
    /// @throws as `encode`
    explicit CExtHoldInstructionCode(const char* code);
    /// @param value the DER of an OBJECT IDENTIFIER
    /// @throws as `decode`
    explicit CExtHoldInstructionCode(const CBlob& value);

    /// @return dotted text, valid until it changes or goes
    const char* get_code() const;
    /// @throws as `encode`
    void put_code(const char* code);
};

/// invalidityDate, 2.5.29.24: when the key was, as far as is known, compromised. Encoded in whole
/// seconds.
class BREVANTIS_ASN1_API CExtInvalidityDate : public ValueWithField<CExtValue, CDateTime> {
public:
    /// `CDateTime(0, 0)`.
    /// @warning The value is empty until `put_invalidityDate` or `encode` is called.
    CExtInvalidityDate();
    /// @throws as `encode`
    explicit CExtInvalidityDate(const CDateTime& invalidityDate);
    /// @param value the DER of a GeneralizedTime
    /// @throws as `decode`
    explicit CExtInvalidityDate(const CBlob& value);

    /// The date, valid until it changes or the object goes; `CDateTime(0, 0)` until one is set or
    /// decoded.
    const CDateTime& get_invalidityDate() const;
    /// @throws as `encode`
    void put_invalidityDate(const CDateTime& invalidityDate);
};

/// certificateIssuer, 2.5.29.29: who issued the certificate of an entry of an indirect CRL.
class BREVANTIS_ASN1_API CExtCertificateIssuer : public ValueWithField<CExtValue, CGeneralNames> {
public:
    /// No names.
    /// @warning The value is empty until `put_issuer` is called.
    CExtCertificateIssuer();
    /// @throws as `encode`
    explicit CExtCertificateIssuer(const CGeneralNames& issuer);
    /// @param value the DER of a GeneralNames
    /// @throws as `decode`
    explicit CExtCertificateIssuer(const CBlob& value);

    /// The names, valid until they change or the object goes.
    const CGeneralNames& get_issuer() const;
    /// @throws as `encode`
    void put_issuer(const CGeneralNames& issuer);
};

/// privateKeyUsagePeriod, 2.5.29.16: when the private key signs, where that is not as long as the
/// certificate is valid. Times are encoded in whole seconds.
class BREVANTIS_ASN1_API CExtPrivateKeyUsagePeriod : public CExtValue {
public:
    /// @param notBefore copied; null: absent
    /// @param notAfter likewise
    /// @throws as `encode`
    CExtPrivateKeyUsagePeriod(const CDateTime* notBefore, const CDateTime* notAfter);
    /// @param value the DER of a PrivateKeyUsagePeriod
    /// @throws as `decode`
    explicit CExtPrivateKeyUsagePeriod(const CBlob& value);
    CExtPrivateKeyUsagePeriod(const CExtPrivateKeyUsagePeriod&) = default;
    /// Leaves @p other without times and without a value.
    CExtPrivateKeyUsagePeriod(CExtPrivateKeyUsagePeriod&& other) noexcept;
    CExtPrivateKeyUsagePeriod& operator=(const CExtPrivateKeyUsagePeriod&) = default;
    CExtPrivateKeyUsagePeriod& operator=(CExtPrivateKeyUsagePeriod&& other) noexcept;
    ~CExtPrivateKeyUsagePeriod() = default;

    /// @return null when absent; otherwise valid until it changes or goes
    const CDateTime* get_notBefore() const;
    const CDateTime* get_notAfter() const;
    /// @param time copied; null takes the time away
    /// @throws as `encode`
    void put_notBefore(const CDateTime* time);
    void put_notAfter(const CDateTime* time);

    /// Replaces the value by the DER of the fields.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_MEMORY when memory is out
    void encode();
    /// Reads the fields from the value.
    /// @warning The value is encoded anew from the fields then, so it may come out changed: without
    ///          fractions of a second, in UTC, and without octets behind it.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when the value does not decode, with
    ///         E_INVALIDARG when a text in it is no time
    void decode();

private:
    void swap(CExtPrivateKeyUsagePeriod& other) noexcept;

    std::optional<CDateTime> notBefore_;
    std::optional<CDateTime> notAfter_;
};

} // namespace Brevantis::ASN1

#endif

#ifndef BREVANTIS_ASN1_VALUES_CMP_REVOCATION_ANNOUNCEMENT_H
#define BREVANTIS_ASN1_VALUES_CMP_REVOCATION_ANNOUNCEMENT_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/cert_id.h>
#include <brevantis/asn1/values/cmp/status_info.h>
#include <brevantis/asn1/values/extension/extension.h>
#include <brevantis/asn1/values/util/owned_copy.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/date_time.h>

/// @file
/// Announcements of revocations (RFC 4210, 5.3.15).

namespace Brevantis::ASN1 {

/// RevAnnContent of RFC 4210, 5.3.15: a certificate is about to be revoked.
class BREVANTIS_ASN1_API CRevAnnContent {
public:
    /// An object without content.
    /// @warning Only assignment, `decode` and destruction are of use; what reads or changes a
    ///          single field throws ATL::CAtlException with E_INVALIDARG, and so does `encode`.
    CRevAnnContent();
    /// Without `crlDetails`.
    CRevAnnContent(const PKIStatusEnum& status, const CCertId& certId,
                   const CDateTime& willBeRevokedAt, const CDateTime& badSinceDate);
    CRevAnnContent(const CRevAnnContent& other);
    /// Leaves @p other without content.
    CRevAnnContent(CRevAnnContent&& other) noexcept;
    CRevAnnContent& operator=(const CRevAnnContent& other);
    CRevAnnContent& operator=(CRevAnnContent&& other) noexcept;
    ~CRevAnnContent();

    /// The fields of a RevAnnContent; valid until the object is assigned to, decoded or goes.
    /// @throws ATL::CAtlException with E_INVALIDARG for an object without content
    const PKIStatusEnum& get_status() const;
    const CCertId& get_certId() const;
    const CDateTime& get_willBeRevokedAt() const;
    const CDateTime& get_badSinceDate() const;
    /// Extensions of the CRL to come, the object's own; null when absent.
    const CExtensions* get_crlDetails() const;

    /// The setters copy.
    /// @throws ATL::CAtlException with E_INVALIDARG for an object without content
    void put_status(const PKIStatusEnum& status);
    void put_certId(const CCertId& certId);
    void put_willBeRevokedAt(const CDateTime& time);
    void put_badSinceDate(const CDateTime& time);
    /// @param extensions copied; null for absent
    void put_crlDetails(const CExtensions* extensions);

    /// Times are written without milliseconds, empty `crlDetails` are left out.
    /// @throws ATL::CAtlException with E_INVALIDARG for an object without content or an issuer that
    ///         cannot be written, with CRYPT_E_ASN1_INTERNAL for what does not encode, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// Replaces the content, or nothing on failure.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob does not decode, with
    ///         E_INVALIDARG for an issuer of an alternative that CGeneralName does not carry or a
    ///         time that is none, with CRYPT_E_ASN1_MEMORY when memory is out
    void decode(const CBlob& blob);

private:
    struct Record;

    Record& record();
    const Record& record() const;

    OwnedCopy<Record> record_;
};

} // namespace Brevantis::ASN1

#endif

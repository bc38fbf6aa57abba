#ifndef BREVANTIS_ASN1_VALUES_CMP_STATUS_INFO_H
#define BREVANTIS_ASN1_VALUES_CMP_STATUS_INFO_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/cmp/failure_info.h>
#include <brevantis/asn1/values/cmp/free_text.h>
#include <brevantis/asn1/values/util/whole_assignment.h>
#include <brevantis/support/blob.h>

/// @file
/// The outcome of a request (RFC 4210, 5.2.3; time stamping: RFC 3161, 2.4.2).

namespace Brevantis::ASN1 {

/// PKIStatus of RFC 4210, 5.2.3. Any number of 32 bits can be held.
enum PKIStatusEnum : unsigned {
    PKIStatusEnum_accepted = 0,               ///< granted as it was asked for
    PKIStatusEnum_grantedWithMods = 1,        ///< granted, otherwise than it was asked for
    PKIStatusEnum_rejection = 2,              ///< refused; the message tells why
    PKIStatusEnum_waiting = 3,                ///< not decided yet; the answer comes later
    PKIStatusEnum_revocationWarning = 4,      ///< a revocation is about to happen
    PKIStatusEnum_revocationNotification = 5, ///< a revocation has happened
    PKIStatusEnum_keyUpdateWarning = 6        ///< the key was updated already
};

/// PKIStatusInfo of RFC 4210, 5.2.3.
class BREVANTIS_ASN1_API CPKIStatusInfo {
public:
    /// No failure bits and no text.
    CPKIStatusInfo(PKIStatusEnum status);
    CPKIStatusInfo(const CPKIStatusInfo&) = default;
    CPKIStatusInfo(CPKIStatusInfo&&) noexcept = default;
    CPKIStatusInfo& operator=(const CPKIStatusInfo& other) { return assignWhole(*this, other); }
    CPKIStatusInfo& operator=(CPKIStatusInfo&&) noexcept = default;
    ~CPKIStatusInfo() = default;

    /// The fields of a PKIStatusInfo; valid until they are set or the object goes. Failure bits of
    /// 0 and an empty text stand for absent ones.
    PKIStatusEnum get_pkiStatus() const { return pkiStatus_; }
    const CPKIFailureInfo& get_failureInfo() const { return failureInfo_; }
    const CPKIFreeText& get_statusString() const { return statusString_; }
    /// The setters copy; nothing is looked at before it is encoded.
    void put_pkiStatus(PKIStatusEnum status) { pkiStatus_ = status; }
    void put_failureInfo(const CPKIFailureInfo& failureInfo) { failureInfo_ = failureInfo; }
    void put_statusString(const CPKIFreeText& text);

    /// Failure bits of 0 and an empty text are left out. Characters are written in the UTF-8 of up
    /// to six octets, surrogates and what is above U+10FFFF too, though RFC 3629 has no place for
    /// them.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL for a character above 0x7FFFFFFF, with
    ///         CRYPT_E_ASN1_MEMORY when memory is out
    CBlob encode() const;
    /// Replaces all three fields, absent ones by their empty value, or none on failure.
    /// @warning A text that was read with a language tag keeps the tag's characters in front, see
    ///          CPKIFreeText_Parse.
    /// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when @p blob does not decode, with
    ///         CRYPT_E_ASN1_UTF8 for text that is no UTF-8, with E_INVALIDARG for a text with half
    ///         a language tag, with CRYPT_E_ASN1_MEMORY when memory is out
    void decode(const CBlob& blob);

private:
    PKIStatusEnum pkiStatus_;
    CPKIFailureInfo failureInfo_;
    CPKIFreeText statusString_;
};

} // namespace Brevantis::ASN1

#endif

#include <brevantis/asn1/values/cmp/revocation_announcement_traits.h>

#include <utility>

#include <brevantis/asn1/values/cmp/cert_id_traits.h>
#include <brevantis/asn1/values/extension/extension_traits.h>
#include <brevantis/asn1/values/types/primitive_traits.h>

namespace Brevantis::ASN1 {

void ASN1T_RevAnnContent_traits::set(ASN1CTXT* ctxt, asn1data::ASN1T_RevAnnContent& record,
                                     const CRevAnnContent& value) {
    record.m = {};
    record.status = value.get_status();
    ASN1T_CertId_traits::set(ctxt, record.certId, value.get_certId());
    ASN1GeneralizedTime_traits::set(ctxt, record.willBeRevokedAt, value.get_willBeRevokedAt());
    ASN1GeneralizedTime_traits::set(ctxt, record.badSinceDate, value.get_badSinceDate());
    const CExtensions* extensions = value.get_crlDetails();
    if (extensions != nullptr && !extensions->empty()) {
        ASN1T_Extensions_traits::set(ctxt, record.crlDetails, *extensions);
        record.m.crlDetailsPresent = 1;
    }
}

void ASN1T_RevAnnContent_traits::get(const asn1data::ASN1T_RevAnnContent& record,
                                     CRevAnnContent& value) {
    CCertId certId;
    CDateTime willBeRevokedAt;
    CDateTime badSinceDate;
    ASN1T_CertId_traits::get(record.certId, certId);
    ASN1GeneralizedTime_traits::get(record.willBeRevokedAt, willBeRevokedAt);
    ASN1GeneralizedTime_traits::get(record.badSinceDate, badSinceDate);
    CRevAnnContent read(static_cast<PKIStatusEnum>(record.status), certId, willBeRevokedAt,
                        badSinceDate);
    if (record.m.crlDetailsPresent != 0) {
        CExtensions extensions;
        ASN1T_Extensions_traits::get(record.crlDetails, extensions);
        read.put_crlDetails(&extensions);
    }
    value = std::move(read);
}

} // namespace Brevantis::ASN1
